import {askCurve} from './api.js';
import {files} from './files.js';
import {report} from './report.js';
import {styleColour} from './colours.js';

/** Channels with more records are not read for a preview alone. */
const mostRecords = 2e6;
const [width, height] = [56, 18];
const waiting = [];
let isBusy = false;

const observer = new IntersectionObserver((entries) => {
  for (const {target, isIntersecting} of entries) {
    if (!isIntersecting) continue;
    observer.unobserve(target);
    waiting.push(target);
  }
  work();
});

/** Draws a preview of a channel once it is seen. @param {HTMLCanvasElement} canvas */
export function previewOf(canvas, channel) {
  const table = files[channel.file].tables[channel.table];
  const group = files[channel.file].info.groups.find((each) => each.group === table.group);
  if (channel.isText || !group?.span || (!report && group.records > mostRecords)) return;
  canvas.channel = channel;
  canvas.span = group.span;
  observer.observe(canvas);
}

async function work() {
  if (isBusy) return;
  isBusy = true;
  while (waiting.length) {
    const canvas = waiting.pop();
    if (!canvas.isConnected) continue;
    const {from, to} = canvas.span;
    try {
      if (from < to) draw(canvas, await askCurve(canvas.channel, from, to, width), from, to);
    } catch {
      // A list without a preview is as useful.
    }
  }
  isBusy = false;
}

function draw(canvas, {x, y}, from, to) {
  const ratio = devicePixelRatio;
  canvas.width = width * ratio;
  canvas.height = height * ratio;
  const finite = y.filter(Number.isFinite);
  const low = finite.reduce((a, b) => Math.min(a, b), Infinity);
  const high = finite.reduce((a, b) => Math.max(a, b), -Infinity);
  const context = canvas.getContext('2d');
  context.scale(ratio, ratio);
  context.strokeStyle = styleColour('--accent');
  context.beginPath();
  let isDown = false;
  x.forEach((time, i) => {
    if (!Number.isFinite(y[i])) {
      isDown = false;
      return;
    }
    const left = (time - from) / (to - from) * (width - 2) + 1;
    const top = high > low ? (high - y[i]) / (high - low) * (height - 4) + 2 : height / 2;
    if (isDown) context.lineTo(left, top);
    else context.moveTo(left, top);
    isDown = true;
  });
  context.stroke();
}
