// Takes the pictures of a short animation: node animation.cjs FOLDER
const fs = require('node:fs');
const path = require('node:path');
const {browse, drive, serve} = require('./page.cjs');

const [, , folder] = process.argv;

async function main() {
  const served = await serve(drive());
  const {browser, page} = await browse({viewport: {width: 960, height: 600}});
  let count = 0;
  const take = async (times = 1) => {
    const picture = await page.screenshot();
    for (let i = 0; i < times; ++i) {
      fs.writeFileSync(path.join(folder, `${String(count++).padStart(3, '0')}.png`), picture);
    }
  };
  // A page does not show where the pointer is.
  await page.addInitScript(() => addEventListener('DOMContentLoaded', () => {
    const pointer = document.body.appendChild(document.createElement('div'));
    const look = {position: 'fixed', width: '16px', height: '16px', borderRadius: '50%', zIndex: 9,
                  background: '#e0457b', opacity: 0.75, pointerEvents: 'none', left: '-20px'};
    Object.assign(pointer.style, look);
    addEventListener('pointermove', (event) => {
      Object.assign(pointer.style, {left: `${event.clientX - 8}px`, top: `${event.clientY - 8}px`});
    }, true);
  }));
  await page.goto(served.address);
  const channel = (name) => page.locator('button.channel').filter({hasText: name}).first();
  await channel('speed').waitFor();
  await page.waitForTimeout(1000);
  let at = [500, 400];
  const moveTo = async (x, y, steps = 5) => {
    const from = at;
    for (let i = 1; i <= steps; ++i) {
      at = [from[0] + (x - from[0]) * i / steps, from[1] + (y - from[1]) * i / steps];
      await page.mouse.move(...at);
      await take();
    }
  };
  const clickOn = async (locator) => {
    const box = await locator.boundingBox();
    await moveTo(box.x + box.width / 3, box.y + box.height / 2);
    await page.mouse.click(...at);
    await page.waitForTimeout(400);
    await take(5);
  };
  await page.mouse.move(...at);
  await take(5);
  for (const name of ['speed', 'throttle', 'gear']) await clickOn(channel(name));
  const box = await page.locator('.u-over').nth(1).boundingBox();
  await moveTo(box.x + box.width * 0.36, box.y + 40, 8);
  for (let i = 0; i < 12; ++i) {
    await page.mouse.wheel(0, -130);
    await page.waitForTimeout(150);
    await take();
  }
  await take(4);
  await page.mouse.down();
  await moveTo(box.x + box.width * 0.6, box.y + 45, 8);
  await page.mouse.up();
  await take(4);
  await clickOn(page.locator('#measure'));
  for (const part of [0.2, 0.75]) {
    await moveTo(box.x + box.width * part, box.y + 50, 5);
    await page.mouse.click(...at);
    await page.waitForTimeout(500);
    await take(6);
  }
  await clickOn(page.locator('#theme'));
  await take(8);
  await browser.close();
  await served.stop();
}

main();
