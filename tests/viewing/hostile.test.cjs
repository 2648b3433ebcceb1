const assert = require('node:assert/strict');
const fs = require('node:fs');
const path = require('node:path');
const {test} = require('node:test');
const {browse, drive, folder, measurementOf, serve} = require('./page.cjs');

const markup = '<img src=x onerror=alert(1)><script>alert(2)</script>';

test('names that are markup and script are shown as they are', async () => {
  const served = await serve(measurementOf('"><b>name', `time [s],${markup}\n0,1\n1,2\n`));
  const {browser, page} = await browse();
  await page.goto(served.address);
  await page.locator('button.channel').nth(1).click();
  await page.locator('.entry').waitFor();
  assert.equal(await page.locator('.entry .name').textContent(), markup);
  await page.locator('#tab-file').click();
  assert.equal(await page.locator('aside b, aside img, main img').count(), 0);
  await page.locator('#save-svg').click();
  assert.deepEqual(page.problems, []);
  await browser.close();
  await served.stop();
});

test('a damaged file shows what is left of it, and what is wrong', async () => {
  const file = path.join(folder, 'damaged.mf4');
  const bytes = fs.readFileSync(drive());
  fs.writeFileSync(file, bytes.subarray(0, bytes.length - 200000));
  const served = await serve(file);
  const {browser, page} = await browse();
  await page.goto(served.address);
  await page.locator('button.channel').filter({hasText: 'speed'}).click();
  await page.locator('.statistics').filter({hasText: 'mean'}).waitFor();
  await page.locator('#tab-findings').click();
  await page.locator('button', {hasText: 'Check the whole file'}).click();
  await page.locator('.finding').first().waitFor();
  assert.deepEqual(page.problems, []);
  await browser.close();
  await served.stop();
});

test('a file that grows is followed', async () => {
  const file = measurementOf('growing', 'time [s],level\n0,1\n1,2\n');
  const longer = measurementOf('longer', 'time [s],level\n0,1\n1,2\n5,3\n');
  const served = await serve(file);
  const {browser, page} = await browse();
  await page.goto(served.address);
  await page.locator('button.channel').nth(1).click();
  await page.locator('.statistics').filter({hasText: 'n 2'}).waitFor();
  fs.copyFileSync(longer, file);
  await page.locator('.statistics').filter({hasText: 'n 3'}).waitFor({timeout: 10000});
  await browser.close();
  await served.stop();
});
