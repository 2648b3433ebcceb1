import {bandBoxes, laneHeight} from './bands.js';
import {channelOf, fullName} from './files.js';
import {bandColour, colourOf, styleColour} from './colours.js';
import {dayText, timeText} from './clock.js';
import {shortNumber} from './number.js';
import {eventTimes} from './marks.js';
import {state} from './state.js';

const namespace = 'http://www.w3.org/2000/svg';

function node(name, attributes, ...children) {
  const made = document.createElementNS(namespace, name);
  for (const [key, value] of Object.entries(attributes)) made.setAttribute(key, value);
  made.append(...children);
  return made;
}

const text = (x, y, words, attributes = {}) =>
  node('text', {x, y, 'font-size': 12, fill: styleColour('--ink-soft'), ...attributes}, words);

/** Round numbers between two, about so many. */
export function ticksBetween(low, high, count) {
  const rough = (high - low) / count;
  const power = 10 ** Math.floor(Math.log10(rough));
  const step = [1, 2, 5, 10].map((each) => each * power).find((each) => each >= rough);
  const ticks = [];
  for (let i = Math.ceil(low / step); i * step <= high && ticks.length < 100; ++i) ticks.push(i * step);
  return {ticks, step};
}

/** A line through the points that are seen; it ends at gaps. */
function pathOf(x, y, toX, toY) {
  let path = '';
  let isDown = false;
  x.forEach((time, i) => {
    if (y[i] === undefined) return;
    if (y[i] === null) {
      isDown = false;
      return;
    }
    const [left, top] = [toX(time).toFixed(1), toY(y[i]).toFixed(1)];
    path += !isDown ? `M${left} ${top}` : state.hasSteps ? `H${left}V${top}` : `L${left} ${top}`;
    isDown = true;
  });
  return path;
}

function legendOf(panel, left, top) {
  let x = left;
  return panel.ids.map((id, place) => {
    const channel = channelOf(id);
    const name = `${fullName(channel)}${channel.unit ? ` [${channel.unit}]` : ''}`;
    const colour = channel.isText ? styleColour('--ink-soft') : colourOf(place);
    const made = text(x, top, name, {fill: colour, 'font-weight': 600});
    x += name.length * 7 + 20;
    return made;
  });
}

function drawPanel(panel, top, {left, width}) {
  const {plot} = panel;
  const height = plot.over.clientHeight;
  const [from, to] = [state.from, state.to];
  const toX = (time) => left + (time - from) / (to - from) * width;
  const id = `clip-${Math.round(top)}`;
  const drawing = node('g', {'clip-path': `url(#${id})`});
  const all = node('g', {}, node('clipPath', {id}, node('rect', {x: left, y: top, width, height})),
      ...legendOf(panel, left, top - 8));
  for (const time of ticksBetween(from, to, width / 110).ticks) {
    all.append(node('line', {x1: toX(time), x2: toX(time), y1: top, y2: top + height,
                             stroke: styleColour('--grid')}));
  }
  panel.units.forEach((unit, place) => {
    const {min, max} = plot.scales[`y ${unit}`];
    const toY = (value) => top + (max - value) / (max - min) * height;
    for (const value of ticksBetween(min, max, height / 45).ticks) {
      if (place === 0) {
        all.append(node('line', {x1: left, x2: left + width, y1: toY(value), y2: toY(value),
                                 stroke: styleColour('--grid')}));
      }
      all.append(text(left - 6 - place * 62, toY(value) + 4, shortNumber(value), {'text-anchor': 'end'}));
    }
    panel.numbers.forEach((channel, i) => {
      if (channelOf(channel).unit !== unit) return;
      drawing.append(node('path', {d: pathOf(plot.data[0], plot.data[i + 1], toX, toY), fill: 'none',
                                   stroke: colourOf(panel.ids.indexOf(channel)), 'stroke-width': 1.4}));
    });
  });
  panel.texts.forEach((channel, lane) => {
    const y = top + height - (panel.texts.length - lane) * laneHeight + 2;
    for (const [start, end, words, code] of bandBoxes(plot, channel, toX)) {
      drawing.append(node('rect', {x: start, y, width: Math.max(1, end - start - 1), height: laneHeight - 4,
                                   fill: code === -2 ? styleColour('--ink-faint') : bandColour(code)}));
      if (end - start > words.length * 7 + 8) {
        drawing.append(text(start + 5, y + 14, words, {fill: styleColour('--ink')}));
      }
    }
  });
  for (const [time, name] of eventTimes()) {
    if (time < from || time > to) continue;
    drawing.append(node('line', {x1: toX(time), x2: toX(time), y1: top, y2: top + height,
                                 stroke: styleColour('--event'), 'stroke-dasharray': '4 3'}),
                   text(toX(time) + 4, top + 12, name, {fill: styleColour('--event')}));
  }
  all.append(drawing);
  return [all, top + height];
}

/** What the panels show, as an SVG document. @returns {string} */
export function pictureOf(panels) {
  const axes = Math.max(1, ...panels.map((panel) => panel.units.length));
  const left = 20 + axes * 62;
  const width = Math.max(200, panels[0]?.plot.over.clientWidth ?? 800);
  const all = node('svg', {xmlns: namespace, 'font-family': 'system-ui, sans-serif'});
  let top = 0;
  for (const panel of panels) {
    const [drawn, bottom] = drawPanel(panel, top + 34, {left, width});
    all.append(drawn);
    top = bottom;
  }
  const {ticks, step} = ticksBetween(state.from, state.to, width / 110);
  for (const time of ticks) {
    const x = left + (time - state.from) / (state.to - state.from) * width;
    all.append(text(x, top + 18, timeText(time, step), {'text-anchor': 'middle'}));
  }
  all.append(text(left + width, top + 34, dayText(state.from), {'text-anchor': 'end'}));
  all.setAttribute('width', left + width + 20);
  all.setAttribute('height', top + 44);
  all.prepend(node('rect', {width: '100%', height: '100%', fill: styleColour('--ground')}));
  return new XMLSerializer().serializeToString(all);
}
