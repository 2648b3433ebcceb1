const assert = require('node:assert/strict');
const path = require('node:path');
const {afterEach, test} = require('node:test');
const {browse, drive, frames, measurementOf, pictures, recordingWithMarker, serve, stateOf, windowOf} =
  require('./page.cjs');

let served, browser, page;

async function open(options, ...files) {
  served = await serve(...files);
  ({browser, page} = await browse(options));
  await page.goto(served.address);
  await page.locator('button.channel').first().waitFor();
}
afterEach(async () => {
  await browser.close();
  assert.equal(await served.stop(), 0);
});

const channels = (name) => page.locator('button.channel').filter({hasText: name});

test('two files are laid over one another and shifted by dragging and by a number', async () => {
  const ramp = (name, from) => measurementOf(name, `time [s],level [V]\n${
    Array.from({length: 100}, (_, i) => `${i},${from + i}`).join('\n')}\n`);
  await open({}, ramp('one', 0), ramp('two', 50));
  await page.locator('summary').nth(1).click();
  for (const place of [0, 1]) await channels('level').nth(place).click();
  assert.equal(await page.locator('.panel').count(), 1);
  await page.locator('.statistics').nth(1).filter({hasText: 'max 149'}).waitFor();
  const box = await page.locator('.u-over').boundingBox();
  await page.keyboard.down('Alt');
  await page.mouse.move(box.x + 100, box.y + 50);
  await page.mouse.down();
  await page.mouse.move(box.x + 100 + box.width / 10, box.y + 50, {steps: 4});
  await page.mouse.up();
  await page.keyboard.up('Alt');
  const {shifts} = await stateOf(page);
  assert.ok(Math.abs(shifts[1] - 9.9) < 0.3, JSON.stringify(shifts));
  await page.locator('#tab-file').click();
  await page.locator('#shift-1').fill('50');
  await page.locator('#shift-1').press('Enter');
  await page.locator('.statistics').nth(1).filter({hasText: 'n 50'}).waitFor();
  assert.deepEqual(page.problems, []);
});

test('a group without times is shown over all of its records', async () => {
  // A first column that falls is no master channel.
  await open({}, measurementOf('records', 'count,level [V]\n5,1\n4,2\n3,4\n2,8\n'));
  await channels('level').click();
  await page.locator('.statistics').filter({hasText: 'min 1  max 8  mean 3.75'}).waitFor();
  assert.deepEqual(await windowOf(page), [0, 3]);
});

test('frames of buses are a table, and one that is chosen places the cursor', async () => {
  await open({}, frames());
  await page.keyboard.press('f');
  await page.locator('#frames tbody tr').nth(100).waitFor();
  assert.deepEqual(await page.locator('#frames tbody tr').nth(1).locator('td').allTextContents(),
                   ['0.01', 'can0', 'data', '123', '0', '', '0', '0', '0', '', '4', '00110011']);
  await page.locator('#frames tbody tr').nth(1).click();
  assert.deepEqual((await stateOf(page)).cursors, [0.01]);
  await page.screenshot({path: path.join(pictures, 'frames.png')});
});

test('events are flags, and one that is chosen is gone to', async () => {
  await open({}, await recordingWithMarker());
  await channels('cpu_total').click();
  await page.locator('#tab-events').click();
  await page.locator('#events button').first().click();
  const [cursor] = (await stateOf(page)).cursors;
  const [, time] = /([\d.]+) s$/.exec(await page.locator('#events button .quiet').first().textContent());
  assert.ok(Math.abs(cursor - Number(time)) <= 0.0005, `${cursor} is not ${time}`);
  await page.locator('#absolute').click();
  await page.locator('#range').filter({hasText: ':'}).waitFor();
  await page.screenshot({path: path.join(pictures, 'events.png')});
  assert.deepEqual(page.problems, []);
});

test('two fingers zoom, one moves', async () => {
  await open({hasTouch: true}, drive());
  await channels('speed').tap();
  const box = await page.locator('.u-over').boundingBox();
  const client = await page.context().newCDPSession(page);
  const touch = (type, ...places) => client.send('Input.dispatchTouchEvent', {
    type, touchPoints: places.map((part) => ({x: box.x + part * box.width, y: box.y + 80}))});
  await touch('touchStart', 0.4, 0.6);
  await touch('touchMove', 0.3, 0.7);
  await touch('touchEnd');
  const [from, to] = await windowOf(page);
  assert.ok(Math.abs(to - from - 300) < 15, `${to - from}`);
  await touch('touchStart', 0.5);
  await touch('touchMove', 0.4);
  await touch('touchEnd');
  const [moved] = await windowOf(page);
  assert.ok(Math.abs(moved - from - 30) < 3, `${moved - from}`);
});

test('a narrow page has its channels above its panels', async () => {
  await open({viewport: {width: 480, height: 900}}, drive());
  await channels('speed').click();
  const side = await page.locator('#side').boundingBox();
  const panel = await page.locator('.panel').boundingBox();
  assert.ok(panel.y >= side.y + side.height && panel.width > 400);
  await page.screenshot({path: path.join(pictures, 'narrow.png')});
});
