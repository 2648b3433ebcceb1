const assert = require('node:assert/strict');
const {execFileSync, spawnSync} = require('node:child_process');
const fs = require('node:fs');
const path = require('node:path');
const {after, before, test} = require('node:test');
const {browse, drive, folder, measurementOf, pictures, recordingWithMarker} = require('./page.cjs');

const mdf = process.env.MDF;
let browser, page;

before(async () => {
  ({browser, page} = await browse());
  // A page from a disk asks nobody for anything.
  page.on('request', (request) => {
    const isOwn = /^(file|data|blob):/.test(request.url());
    if (!isOwn) page.problems.push(`request: ${request.url()}`);
  });
});
after(() => browser.close());

/** Writes a report. @returns {string} its path */
function report(name, files, ...options) {
  const html = path.join(folder, `${name}.html`);
  execFileSync(mdf, ['plot', ...files, '-o', html, ...options], {stdio: 'ignore'});
  return html;
}

async function open(html, hash = '') {
  page.problems.length = 0;
  await page.goto('about:blank');
  await page.goto(`file://${html}${hash}`);
  await page.locator('.entry').first().waitFor();
}

const module_ = (name, work, argument) => page.evaluate(
    `(async () => (${work})(await import('page/${name}'), ${JSON.stringify(argument ?? null)}))()`);
const answer = (name, parameters) => module_('report.js', '({answers}, [name, parameters]) => answers[name](parameters)',
                                             [name, {file: 0, table: 0, ...parameters}]);
const windowOf = () => module_('state.js', '({state}) => [state.from, state.to]');
const statistics = (name) => page.locator('.entry').filter({hasText: name}).locator('.statistics');

async function saved(button) {
  const [download] = await Promise.all([page.waitForEvent('download'), page.click(button)]);
  const file = path.join(folder, download.suggestedFilename());
  await download.saveAs(file);
  return fs.readFileSync(file);
}

/** Numbers, a gap, and a text. */
const few = () => measurementOf('few', 'time [s],level [V],load,state\n' +
  '0,1.5,10,on\n1,-2,20,on\n2,,30,"off, ""now"""\n3,4.25,40,\n4,0.1,50,on\n');

test('curves, values, bands and statistics are those of the file', async () => {
  await open(report('few', [few()], '-c', '*'));
  await statistics('level').filter({hasText: 'n 4'}).waitFor();
  assert.equal(await statistics('level').textContent(), 'min -2  max 4.25  mean 0.9625  σ 2.62151  n 4  1 invalid');
  assert.deepEqual(await module_('panels.js', `({allPanels}) => {
    const [panel] = allPanels();
    return panel.plot.data.map((list) => [...list]);
  }`), [[0, 1, 2, 3, 4], [1.5, -2, null, 4.25, 0.1]]);
  assert.deepEqual(await answer('value', {column: 0, at: 1.9}), {time: 1, value: '-2'});
  assert.deepEqual(await answer('value', {column: 0, at: 2}), {time: 2, value: ''});
  assert.equal(await answer('value', {column: 0, at: -1}), null);
  assert.deepEqual(await answer('value', {column: 2, at: 2.5}), {value: 'off, "now"'});
  const bands = await answer('bands', {column: 2, from: 0, to: 4, pixels: 100});
  assert.deepEqual(bands, {runs: [[0, 0], [2, 1], [3, -1], [4, 0]], texts: [[0, 'on'], [1, 'off, "now"']],
                           first: 0, last: 4});
  assert.deepEqual(page.problems, []);
});

test('the pointer tells values, and the wheel zooms', async () => {
  await open(report('few', [few()], '-c', 'load', 'state'));
  const box = await page.locator('.u-over').first().boundingBox();
  await page.mouse.move(box.x + box.width * 0.55, box.y + 20);
  const value = (name) => page.locator('.entry').filter({hasText: name}).locator('.value');
  await value('load').filter({hasText: /^30$/}).waitFor();
  await value('state').filter({hasText: 'off, "now"'}).waitFor();
  await page.mouse.move(box.x + box.width / 2, box.y + 20);
  await page.mouse.wheel(0, -500);
  await statistics('load').filter({hasText: 'min 30  max 30  mean 30  n 1'}).waitFor();
  const [from, to] = await windowOf();
  assert.ok(Math.abs(from + to - 4) < 0.05 && Math.abs(to - from - 4 / Math.E) < 0.05, `${from} ${to}`);
  await page.reload();
  await page.locator('.entry').first().waitFor();
  assert.deepEqual(await windowOf(), [from, to]);
});

test('the visible samples and pictures are saved', async () => {
  await open(report('few', [few()], '-c', '*'), '#p=0.0.0,0.0.2&x=0.5,3.5');
  assert.equal(String(await saved('#save-csv')), 'time [s],level [V],state\n1,-2,on\n2,,"off, ""now"""\n3,4.25,\n');
  assert.match(String(await saved('#save-svg')), /^<svg .*level \[V\].*<path d="M-?\d/s);
  assert.equal((await saved('#save-png')).subarray(1, 4).toString(), 'PNG');
  assert.deepEqual(page.problems, []);
});

test('a channel that is too large is told of in groups, which the page says', async () => {
  const lines = Array.from({length: 200000}, (_, i) => `${i},${i % 1000 === 500 ? 1000 : (i % 8) / 10},${i % 100000 < 3 ? `t${i}` : 'x'}`);
  const file = measurementOf('large', `time [s],peaks [A],word\n${lines.join('\n')}\n`);
  const html = report('large', [file], '-c', '*', '--max-size', '1');
  assert.ok(fs.statSync(html).size <= 1000000);
  await open(html);
  await statistics('peaks').filter({hasText: 'groups'}).waitFor();
  const text = await statistics('peaks').textContent();
  // Each thousandth sample, which would be 0.4, is a peak.
  assert.match(text, /^min 0 {2}max 1000 {2}mean 1\.3496 {2}σ 31\.59\d+ {2}n 200 k {2}from groups of (\d+) samples$/);
  const width = Number(/groups of (\d+)/.exec(text)[1]);
  const middle = 8 * width + width / 2;
  assert.equal((await answer('statistics', {column: 0, from: middle, to: middle + 1})).isAbout, true);
  assert.deepEqual(await answer('value', {column: 0, at: middle}), {time: 8 * width, minimum: 0, maximum: 0.7, hasGaps: false});
  assert.deepEqual((await answer('curve', {column: 0, from: 0, to: 199999, pixels: 100})).isExact, false);
  const peaks = await module_('report.js', `({answers}) => {
    const {y} = answers.curve({file: 0, table: 0, column: 0, from: 0, to: 199999, pixels: 100});
    return y.filter((value) => value === 1000).length;
  }`);
  assert.ok(peaks >= 100, `${peaks}`);
  assert.deepEqual(await answer('value', {column: 1, at: 100002.5}), {value: 't100002'});
  const csv = await answer('csv', {columns: '0,1', from: 0, to: 1});
  assert.equal(csv, 'time first [s],time last [s],peaks minimum [A],peaks mean [A],peaks maximum [A],peaks values,word\n' +
    `0,${width - 1},0,${csv.split('\n')[1].split(',')[3]},0.7,${width},several\n`);
  await page.locator('#tab-file').click();
  await page.locator('#file', {hasText: `Of up to ${width} samples at a time`}).waitFor();
  assert.deepEqual(page.problems, []);
});

test('files lie over one another, with events, the time of day and a title', async () => {
  const html = report('machine', [await recordingWithMarker(), few()], '-c', 'cpu_total', 'level', '--title', 'Two <b>files');
  await open(html);
  assert.equal(await page.title(), 'Two <b>files');
  assert.equal(await page.locator('h1').textContent(), 'Two <b>files');
  await page.locator('#tab-events').click();
  await page.locator('#events button').first().click();
  assert.equal((await module_('state.js', '({state}) => state.cursors')).length, 1);
  await page.locator('#absolute').click();
  await page.locator('#range').filter({hasText: /\d\d:\d\d:\d\d/}).waitFor();
  assert.equal(await page.locator('#frames-button').isVisible(), false);
  await page.locator('#tab-findings').click();
  await page.locator('#findings', {hasText: 'mdf check looks at all of a file'}).waitFor();
  await page.locator('#tab-file').click();
  assert.ok(!(await page.locator('#file').innerHTML()).includes(folder), 'where a file lies is told');
  await page.locator('#shift-1').fill('2');
  await page.locator('#shift-1').press('Enter');
  assert.deepEqual(page.problems, []);
});

test('names and texts that are markup and script are shown as they are', async () => {
  const markup = '</script><script>alert(1)</script><img src=x onerror=alert(2)><!--';
  const file = measurementOf('"><b>name', `time [s],${markup},word\n0,1,${markup}\n1,2,${markup}\n`);
  await open(report('hostile', [file], '-c', '*', '--title', `</title>${markup}`));
  assert.equal(await page.locator('.entry .name').first().textContent(), markup);
  assert.equal(await page.title(), `</title>${markup}`);
  assert.equal((await answer('value', {column: 1, at: 0})).value, markup);
  assert.equal(await page.locator('aside b, img').count(), 0);
  await page.locator('#tab-file').click();
  assert.deepEqual(page.problems, []);
});

test('scripts that are put into the page do not run, and nothing is fetched', async () => {
  const html = report('guarded', [few()], '-c', 'level');
  const marked = '<script>document.title = "it ran";</script><img src="http://127.0.0.1:9/x.png">';
  fs.writeFileSync(html, fs.readFileSync(html, 'utf8').replace('<aside', `${marked}<aside`));
  await open(html);
  assert.equal(await page.title(), 'few.mf4');
  assert.ok(page.problems.some((text) => /Content Security Policy/.test(text)));
  assert.ok(!page.problems.some((text) => /ERR_CONNECTION/.test(text)), page.problems.join('\n'));
});

test('reports that cannot be are refused in a sentence', () => {
  const names = Array.from({length: 4000}, (_, i) => `channel${i}`);
  const row = (time) => [time, ...names.map((_, i) => i / 7 + time)].join(',');
  const file = measurementOf('wide', `time [s],${names.join(',')}\n${Array.from({length: 60}, (_, i) => row(i)).join('\n')}\n`);
  const html = path.join(folder, 'wide.html');
  const run = spawnSync(mdf, ['plot', file, '-c', '*', '-o', html, '--max-size', '1'], {encoding: 'utf8'});
  assert.equal(run.status, 1);
  assert.equal(run.stderr, 'mdf: even the coarsest report of these channels takes more than 1 MB; ' +
    'choose fewer channels, or a larger --max-size\n');
  assert.equal(fs.existsSync(html), false);
});

for (const colorScheme of ['light', 'dark']) {
  test(`${colorScheme}: nothing is in the way of a screen reader`, async () => {
    await page.emulateMedia({colorScheme});
    await open(report('drive', [drive()], '-c', '*'));
    assert.deepEqual(await windowOf(), [0, 599.99]);
    await statistics('throttle').filter({hasText: 'invalid'}).waitFor();
    await page.locator('#tab-file').click();
    await page.waitForTimeout(500);
    await page.screenshot({path: path.join(pictures, `report-${colorScheme}.png`)});
    // The page's own policy lets no such script in.
    await page.context().newCDPSession(page).then((client) => client.send('Runtime.evaluate', {
      expression: fs.readFileSync(require.resolve('axe-core/axe.min.js'), 'utf8')}));
    const {violations} = await page.evaluate(() => window.axe.run());
    assert.deepEqual(violations.map(({id, nodes}) => [id, nodes.map(({html}) => html)]), []);
    assert.deepEqual(page.problems, []);
  });
}
