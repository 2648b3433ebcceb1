// What the page looks like. MDF_RENEW_PICTURES=1 takes the pictures anew that others are held against.
const assert = require('node:assert/strict');
const fs = require('node:fs');
const path = require('node:path');
const {after, before, test} = require('node:test');
const {browse, drive, pictures, serve} = require('./page.cjs');

const expected = path.join(__dirname, 'pictures');
let served, browser, page;

before(async () => {
  served = await serve(drive());
  ({browser, page} = await browse({viewport: {width: 900, height: 560}}));
});
after(async () => {
  await browser?.close();
  assert.equal(await served?.stop(), 0);
});

/** The part of a picture, from 0 to 1, that looks different in another one. */
function difference(one, other) {
  return page.evaluate(async (sources) => {
    const [left, right] = await Promise.all(sources.map(async (source) => {
      const image = new Image();
      image.src = `data:image/png;base64,${source}`;
      await image.decode();
      const context = new OffscreenCanvas(image.width, image.height).getContext('2d');
      context.drawImage(image, 0, 0);
      return context.getImageData(0, 0, image.width, image.height);
    }));
    if (left.width !== right.width || left.height !== right.height) return 1;
    let count = 0;
    for (let i = 0; i < left.data.length; i += 4) {
      const by = [0, 1, 2].map((k) => Math.abs(left.data[i + k] - right.data[i + k]));
      if (Math.max(...by) > 48) ++count;
    }
    return count / (left.width * left.height);
  }, [one, other].map((picture) => picture.toString('base64')));
}

async function open(view) {
  await page.goto('about:blank');
  await page.goto(`${served.address}#${view}`);
  await page.locator('.panel').nth(view.split(';').length - 1).waitFor();
  await page.waitForFunction(() => !document.querySelector('#panels').textContent.includes('reading'));
  await page.waitForTimeout(500);
}

const read = (name) => fs.readFileSync(path.join(expected, `${name}.png`));

const views = {
  whole: 'p=0.0.1,0.0.2;0.0.4;0.0.5&x=0,600',
  gap: 'p=0.0.4;0.0.5&x=195,235&c=201,229',
  samples: 'p=0.0.1;0.0.3&x=100,100.2&steps=1',
  dark: 'p=0.0.1,0.0.2;0.0.4;0.0.5&x=0,600&theme=dark',
};

for (const [name, view] of Object.entries(views)) {
  test(`${name} looks as it did`, async () => {
    await open(view);
    const picture = await page.screenshot();
    fs.writeFileSync(path.join(pictures, `${name}.png`), picture);
    if (process.env.MDF_RENEW_PICTURES) fs.writeFileSync(path.join(expected, `${name}.png`), picture);
    const part = await difference(picture, read(name));
    assert.ok(part < 0.01, `${(100 * part).toFixed(2)} % of the picture in build/view is different`);
  });
}

test('other views look different', async () => {
  for (const [one, other] of [['whole', 'gap'], ['gap', 'samples'], ['whole', 'dark']]) {
    assert.ok(await difference(read(one), read(other)) > 0.03, `${one} and ${other}`);
  }
});
