// A file of 10^8 samples. How long things take is reported, and asserted nowhere.
process.env.MDF = process.env.MDF_OPTIMISED;
const assert = require('node:assert/strict');
const {execFileSync} = require('node:child_process');
const fs = require('node:fs');
const path = require('node:path');
const {after, afterEach, before, test} = require('node:test');
const {browse, folder, pictures, serve, windowOf} = require('./page.cjs');

// As make_many_samples.cpp has it.
const samples = 1e8;
const rate = 1024;
const spike = 61803398;
const levelOf = (sample) => (sample === spike ? 5000 : sample % 1000);

const file = path.join(folder, 'many.mf4');
const cache = path.join(folder, 'cache');
let served, browser;

before(() => {
  execFileSync(process.env.MAKE_MANY_SAMPLES, [file]);
  const hourAgo = Date.now() / 1000 - 3600;
  fs.utimesSync(file, hourAgo, hourAgo);
  fs.mkdirSync(cache);
  process.env.XDG_CACHE_HOME = cache;
});
afterEach(close);
after(() => fs.rmSync(file));

async function close() {
  await browser?.close();
  browser = undefined;
  assert.equal(await served?.stop() ?? 0, 0);
  served = undefined;
}

/** Milliseconds that a curve takes, and its bytes. */
async function curve(from, to) {
  const query = new URLSearchParams({file: 0, table: 0, column: 1, from, to, pixels: 1000});
  const begin = performance.now();
  const response = await fetch(new URL(`api/curve?${query}`, served.address));
  const bytes = Buffer.from(await response.arrayBuffer());
  return {time: performance.now() - begin, bytes};
}

/** What is drawn of the first channel in the window. */
function drawn(page) {
  return page.evaluate(async () => {
    const [panel] = (await import('./panels.js')).allPanels();
    const {from, to} = (await import('./state.js')).state;
    const [x, y] = panel.plot.data;
    const points = [];
    for (let i = 0; i < x.length; ++i) {
      if (x[i] >= from && x[i] <= to && y[i] !== null && !Number.isNaN(y[i])) points.push([x[i], y[i]]);
    }
    return {points, pixel: (to - from) / panel.plot.over.clientWidth};
  });
}

/** The highest point that is drawn, when it is about where the spike is. */
async function highestAtSpike(page) {
  for (let tries = 0; tries < 200; ++tries) {
    const {points, pixel} = await drawn(page);
    const highest = points.reduce((a, b) => (b[1] > a[1] ? b : a), [NaN, -1]);
    if (highest[1] === 5000 && Math.abs(highest[0] - spike / rate) <= 3 * pixel) return highest[0];
    await page.waitForTimeout(50);
  }
  assert.fail(`the spike is not drawn in ${await windowOf(page)}`);
}

/** Pictures a second while something is done. */
async function picturesASecond(page, work) {
  await page.evaluate(() => {
    window.pictureTimes = [];
    const count = (time) => window.pictureTimes.push(time) && requestAnimationFrame(count);
    requestAnimationFrame(count);
  });
  await work();
  const times = await page.evaluate(() => window.pictureTimes);
  return ((times.length - 1) / (times.at(-1) - times[0]) * 1000).toFixed(0);
}

/** Drags to the left and back. */
async function pan(page, box) {
  await page.mouse.move(box.x + box.width * 0.9, box.y + 50);
  await page.mouse.down();
  for (const part of [0.1, 0.9]) await page.mouse.move(box.x + box.width * part, box.y + 50, {steps: 60});
  await page.mouse.up();
}

test('a spike of one sample among 10^8 is seen at every zoom, and found', async (t) => {
  served = await serve(file);
  let page;
  ({browser, page} = await browse());
  const curves = [];
  page.on('requestfinished', (request) => {
    const {responseEnd, requestStart} = request.timing();
    if (request.url().includes('api/curve')) curves.push(Math.round(responseEnd - requestStart));
  });
  await page.goto(served.address);
  await page.locator('button.channel').filter({hasText: 'level'}).click();
  await page.locator('.statistics').filter({hasText: 'n 100 M'}).waitFor();
  const box = await page.locator('.u-over').boundingBox();
  let [from, to] = await windowOf(page);
  assert.deepEqual([from, to], [0, (samples - 1) / rate]);
  await highestAtSpike(page);
  await page.screenshot({path: path.join(pictures, 'many-samples.png')});
  for (let steps = 0; to - from > 50 / rate; ++steps) {
    assert.ok(steps < 30, `still from ${from} to ${to}`);
    if (steps === 5) {
      const still = await picturesASecond(page, () => page.waitForTimeout(1000));
      t.diagnostic(`${still} pictures a second at rest, ${await picturesASecond(page, () => pan(page, box))} while panning`);
      [from, to] = await windowOf(page);
    }
    const found = await highestAtSpike(page);
    await page.locator('.statistics').filter({hasText: 'max 5000'}).waitFor();
    await page.mouse.move(box.x + (found - from) / (to - from) * box.width, box.y + 50);
    await page.mouse.wheel(0, -500);
    await page.waitForTimeout(50);
    [from, to] = await windowOf(page);
  }
  assert.equal(await highestAtSpike(page), spike / rate);
  const first = Math.ceil(from * rate);
  const expected = Array.from({length: Math.floor(to * rate) - first + 1},
                              (_, i) => [(first + i) / rate, levelOf(first + i)]);
  assert.deepEqual((await drawn(page)).points, expected);
  assert.deepEqual(page.problems, []);
  t.diagnostic(`milliseconds of each request for a curve: ${curves.join(' ')}`);
  assert.ok(!fs.existsSync(path.join(cache, 'mdf')), 'nothing is written unless asked for');
});

test('with --cache the file is shown from what was kept', async (t) => {
  const windows = [[0, samples / rate], [spike / rate - 1000, spike / rate + 10], [spike / rate - 0.01, spike / rate]];
  const answers = [];
  for (const run of ['first', 'second']) {
    served = await serve('--cache', file);
    for (const [i, window] of windows.entries()) {
      const {time, bytes} = await curve(...window);
      if (i === 0) t.diagnostic(`first picture of the ${run} run: ${time.toFixed(0)} ms`);
      answers.push(bytes.toString('latin1'));
    }
    await close();
    assert.equal(fs.readdirSync(path.join(cache, 'mdf')).length, 1);
  }
  assert.deepEqual(answers.slice(windows.length), answers.slice(0, windows.length));
});
