const assert = require('node:assert/strict');
const fs = require('node:fs');
const path = require('node:path');
const {after, before, beforeEach, test} = require('node:test');
const {browse, drive, pictures, serve, windowOf} = require('./page.cjs');

let served, browser, page;

before(async () => {
  served = await serve(drive());
  ({browser, page} = await browse());
});
after(async () => {
  await browser?.close();
  assert.equal(await served?.stop(), 0);
});
beforeEach(async () => {
  page.problems.length = 0;
  await page.goto('about:blank');
  await page.goto(served.address);
  await page.locator('button.channel').first().waitFor();
});

const channel = (name) => page.locator('button.channel').filter({hasText: name}).first();
const plot = () => page.locator('.u-over').first();
const statistics = (name) => page.locator('.entry').filter({hasText: name}).locator('.statistics');
const near = (found, expected, by) =>
  assert.ok(Math.abs(found - expected) <= by, `${found} is not about ${expected}`);

test('a click shows a channel with its statistics, another one removes it', async () => {
  await channel('speed').click();
  await statistics('speed').filter({hasText: 'n 60000'}).waitFor();
  assert.equal(await channel('speed').getAttribute('aria-pressed'), 'true');
  await channel('speed').click();
  assert.equal(await page.locator('.panel').count(), 0);
  assert.deepEqual(page.problems, []);
});

test('channels of one unit have a panel in common, others one of their own', async () => {
  for (const name of ['speed', 'target', 'rpm', 'gear']) await channel(name).click();
  assert.equal(await page.locator('.panel').count(), 3);
  assert.equal(await page.locator('.panel').first().locator('.entry').count(), 2);
});

test('answers that are slow reach panels that were made anew meanwhile', async () => {
  await page.route('**/api/curve?**', async (route) => {
    await new Promise((resolve) => setTimeout(resolve, 500));
    await route.continue().catch(() => null);  // the page may be gone
  });
  await channel('speed').click();
  await page.locator('.statistics').filter({hasText: 'reading…'}).waitFor();
  await channel('target').click();
  await page.waitForFunction(async () => {
    const [panel] = (await import('./panels.js')).allPanels();
    const curves = panel.plot.data.slice(1);
    return curves.length === 2 &&
        curves.every((values) => values.filter((value) => value > 100).length > 100);
  });
  await page.unrouteAll({behavior: 'wait'});
});

test('a channel is dragged into a panel', async () => {
  await channel('speed').click();
  await channel('rpm').dragTo(page.locator('.panel').first());
  assert.equal(await page.locator('.panel').count(), 1);
  assert.equal(await page.locator('.panel .entry').count(), 2);
});

test('the wheel zooms around the pointer, dragging moves, a double click shows all', async () => {
  await channel('speed').click();
  const box = await plot().boundingBox();
  await page.mouse.move(box.x + box.width / 2, box.y + 50);
  await page.mouse.wheel(0, -500);
  await page.waitForTimeout(100);
  const [from, to] = await windowOf(page);
  near((from + to) / 2, 300, 1);
  near(to - from, 600 * Math.exp(-1), 1);
  await page.mouse.down();
  await page.mouse.move(box.x + box.width / 4, box.y + 50, {steps: 5});
  await page.mouse.up();
  const [moved] = await windowOf(page);
  near(moved - from, (to - from) / 4, 1);
  await plot().dblclick();
  near((await windowOf(page))[0], 0, 0.01);
  assert.deepEqual(page.problems, []);
});

test('Shift and dragging zooms to a range', async () => {
  await channel('speed').click();
  const box = await plot().boundingBox();
  await page.keyboard.down('Shift');
  await page.mouse.move(box.x + box.width * 0.25, box.y + 50);
  await page.mouse.down();
  await page.mouse.move(box.x + box.width * 0.5, box.y + 60, {steps: 4});
  await page.mouse.up();
  await page.keyboard.up('Shift');
  const [from, to] = await windowOf(page);
  near(from, 150, 2);
  near(to, 300, 2);
});

test('keys move and zoom', async () => {
  await channel('speed').click();
  await page.keyboard.press('+');
  let [from, to] = await windowOf(page);
  near(to - from, 300, 0.1);
  await page.locator('#panels').focus();
  await page.keyboard.press('ArrowRight');
  near((await windowOf(page))[0] - from, 30, 0.1);
  await page.keyboard.press('0');
  [from, to] = await windowOf(page);
  near(to - from, 600, 0.1);
});

test('search finds by parts of names, and Enter shows the first', async () => {
  await page.keyboard.press('/');
  await page.keyboard.type('throt');
  assert.equal(await page.locator('button.channel').count(), 1);
  await page.keyboard.press('Enter');
  await statistics('throttle').filter({hasText: '2999 invalid'}).waitFor();
});

test('the cursor tells values of all panels, two tell the difference', async () => {
  await channel('speed').click();
  await channel('gear').click();
  await page.locator('#measure').click();
  const box = await plot().boundingBox();
  await page.mouse.click(box.x + box.width * 0.25, box.y + 40);
  await page.mouse.click(box.x + box.width * 0.5, box.y + 40);
  await page.locator('.entry').filter({hasText: 'speed'}).locator('.marks').filter({hasText: 'Δ'}).waitFor();
  const range = await page.locator('#range').textContent();
  assert.match(range, /Δt 1(49|50)(\.\d+)? s/);
  const gear = page.locator('.entry').filter({hasText: 'gear'}).locator('.marks');
  assert.match(await gear.textContent(), /^A (first|second|third|fourth|fifth) {2}B \w+$/);
});

test('the address brings the view back', async () => {
  await channel('speed').click();
  await channel('gear').click();
  await page.keyboard.press('+');
  await page.waitForTimeout(400);
  const address = page.url();
  const [from] = await windowOf(page);
  await page.goto('about:blank');
  await page.goto(address);
  await page.locator('.panel').nth(1).waitFor();
  near((await windowOf(page))[0], from, 1e-6);
});

test('an address with nonsense in it does no harm', async () => {
  await page.goto('about:blank');
  await page.goto(`${served.address}#p=9.9.9,0.0.1,<b>&x=5,1&c=a,b&s=x&theme=<script>`);
  await page.locator('.panel').first().waitFor();
  assert.equal(await page.locator('.entry').count(), 1);
  assert.deepEqual(page.problems, []);
});

test('pictures and samples are saved', async () => {
  await channel('speed').click();
  await statistics('speed').filter({hasText: 'n 60000'}).waitFor();
  const saved = async (button) => {
    const [download] = await Promise.all([page.waitForEvent('download'), page.click(button)]);
    const file = path.join(pictures, download.suggestedFilename());
    await download.saveAs(file);
    return fs.readFileSync(file);
  };
  assert.match(String(await saved('#save-csv')), /^time \[s\],speed \[km\/h\]\n0,[\d.]+\n0.01,/);
  const svg = String(await saved('#save-svg'));
  assert.match(svg, /^<svg .*speed \[km\/h\].*<path d="M\d/s);
  assert.equal((await saved('#save-png')).subarray(1, 4).toString(), 'PNG');
});

for (const colorScheme of ['light', 'dark']) {
  test(`${colorScheme}: nothing is in the way of a screen reader`, async () => {
    await page.emulateMedia({colorScheme});
    for (const name of ['speed', 'target', 'rpm', 'throttle', 'gear']) await channel(name).click();
    await statistics('throttle').filter({hasText: 'invalid'}).waitFor();
    const box = await plot().boundingBox();
    await page.mouse.click(box.x + box.width * 0.4, box.y + 40);
    await page.mouse.move(box.x + box.width * 0.6, box.y + 60);
    await page.waitForTimeout(500);
    await page.screenshot({path: path.join(pictures, `view-${colorScheme}.png`)});
    await page.evaluate(fs.readFileSync(require.resolve('axe-core/axe.min.js'), 'utf8'));
    const {violations} = await page.evaluate(() => window.axe.run());
    assert.deepEqual(violations.map(({id, nodes}) => [id, nodes.map(({html}) => html)]), []);
  });
}
