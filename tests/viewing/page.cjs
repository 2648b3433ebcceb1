// What the tests of the page have in common: measurements, the program that serves them, a browser.
const {spawn, execFileSync} = require('node:child_process');
const fs = require('node:fs');
const os = require('node:os');
const path = require('node:path');
const {chromium} = require('playwright-core');

const mdf = process.env.MDF;
const pictures = path.join(__dirname, '../../build/view');
const folder = fs.mkdtempSync(path.join(os.tmpdir(), 'mdf-view-'));
process.on('exit', () => fs.rmSync(folder, {recursive: true, force: true}));

/** Writes a table and imports it. @returns {string} the measurement's path */
function measurementOf(name, table) {
  const csv = path.join(folder, `${name}.csv`);
  const file = path.join(folder, `${name}.mf4`);
  fs.writeFileSync(csv, table);
  execFileSync(mdf, ['import', csv, '--force', '-o', file], {stdio: 'ignore'});
  return file;
}

/** Ten minutes of a drive: numbers in three units, a gap, and a text. */
function drive() {
  const lines = ['time [s],speed [km/h],target [km/h],rpm [1/min],throttle [%],gear'];
  let speed = 0;
  for (let i = 0; i < 60000; ++i) {
    const time = i / 100;
    const target = 60 + 50 * Math.sin(time / 40) + 20 * Math.sin(time / 7);
    speed = Math.max(0, speed + (target - speed) * 0.004);
    const gear = Math.min(4, Math.floor(speed / 25));
    const rpm = 800 + speed * 45 / (0.6 + 0.35 * gear) + 30 * Math.sin(i);
    const throttle = i > 20000 && i < 23000 ? '' : Math.max(0, Math.min(100, (target - speed) * 1.5 + 20)).toFixed(1);
    lines.push([time.toFixed(2), speed.toFixed(2), target.toFixed(2), rpm.toFixed(0), throttle,
                ['first', 'second', 'third', 'fourth', 'fifth'][gear]].join(','));
  }
  return measurementOf('drive', `${lines.join('\n')}\n`);
}

/** A recording of this machine, with a marker. */
async function recordingWithMarker() {
  const file = path.join(folder, 'machine.mf4');
  const program = spawn(mdf, ['record', file, '--duration', '2s', '--rate', '50Hz'], {stdio: 'ignore'});
  const ended = new Promise((resolve) => program.once('exit', resolve));
  await new Promise((resolve) => setTimeout(resolve, 1000));
  program.kill('SIGUSR1');
  await ended;
  return file;
}

/** Frames of a bus, as candump logs them. */
function frames() {
  const log = path.join(folder, 'bus.log');
  const file = path.join(folder, 'bus.mf4');
  const lines = Array.from({length: 2000}, (_, i) =>
    `(${(1700000000 + i / 100).toFixed(6)}) can0 ${(i % 2 ? 0x123 : 0x456).toString(16)}#${'0011'.repeat(2)}`);
  fs.writeFileSync(log, `${lines.join('\n')}\n`);
  execFileSync(mdf, ['import', log, '-o', file], {stdio: 'ignore'});
  return file;
}

/** Serves files. @returns {Promise<{address: string, stop: function}>} */
async function serve(...files) {
  const program = spawn(mdf, ['view', '--no-browser', ...files], {stdio: ['ignore', 'pipe', 'inherit']});
  const address = await new Promise((resolve, reject) => {
    program.stdout.once('data', (text) => resolve(String(text).trim()));
    program.once('exit', (code) => reject(new Error(`mdf view ended with ${code}`)));
  });
  const ended = new Promise((resolve) => program.once('exit', resolve));
  return {address, stop: () => (program.kill('SIGTERM'), ended)};
}

/** A browser with a page, and what was wrong in it. */
async function browse(options = {}) {
  const browser = await chromium.launch({
    executablePath: '/usr/bin/chromium', args: ['--no-sandbox', '--disable-gpu'],
    env: {...process.env, FONTCONFIG_FILE: path.join(__dirname, 'fonts.conf')}});
  const context = await browser.newContext(
      {viewport: {width: 1280, height: 800}, colorScheme: 'light', acceptDownloads: true, ...options});
  const page = await context.newPage();
  page.problems = [];
  page.on('pageerror', (error) => page.problems.push(String(error)));
  page.on('console', (message) => message.type() === 'error' && page.problems.push(message.text()));
  page.on('dialog', (dialog) => (page.problems.push(`dialog: ${dialog.message()}`), dialog.dismiss()));
  return {browser, page};
}

/** What the page shows. */
function stateOf(page) {
  return page.evaluate(async () => (await import('./state.js')).state);
}

/** From where to where it shows it. */
async function windowOf(page) {
  const {from, to} = await stateOf(page);
  return [from, to];
}

module.exports = {browse, drive, folder, frames, measurementOf, pictures, recordingWithMarker, serve, stateOf,
                  windowOf};
