import uPlot from './uPlot.esm.js';
import {channelOf} from './files.js';
import {timeText} from './clock.js';
import {colourOf, styleColour} from './colours.js';
import {element} from './element.js';
import {joinCurves} from './join.js';
import {shortNumber} from './number.js';
import {drawBands, laneHeight} from './bands.js';
import {drawMarks} from './marks.js';
import {makeLegend} from './legend.js';
import {samplesOf} from './samples.js';
import {state} from './state.js';

export const axisWidth = 62;
const font = '12px system-ui, sans-serif';
const empty = {x: [], y: []};

/** A picture of some channels over the time that all panels have in common. */
export class Panel {
  /**
   * @param {string[]} ids of its channels
   * @param {{axes: number, onPointer: function, isLast: boolean}} options
   */
  constructor(ids, options) {
    this.ids = ids;
    this.options = options;
    this.numbers = ids.filter((id) => !channelOf(id).isText);
    this.texts = ids.filter((id) => channelOf(id).isText);
    this.units = [...new Set(this.numbers.map((id) => channelOf(id).unit))];
    this.legend = makeLegend(ids, options);
    this.body = element('div.plot');
    this.element = element('section.panel', {
      role: 'group',
      'aria-label': ids.map((id) => channelOf(id).name).join(', '),
    }, this.legend.element, this.body);
  }

  /** Draws anew at the size that it has now. */
  mount() {
    this.plot?.destroy();
    this.plot = new uPlot(this.#settings(), this.#data(), this.body);
    this.options.onPlot(this.plot);
  }

  get width() {
    return Math.max(80, this.body.clientWidth);
  }

  get height() {
    const body = Math.max(60, this.body.clientHeight);
    return this.numbers.length === 0 ? this.texts.length * laneHeight + 50 : body;
  }

  resize() {
    const {width, height} = this;
    if (this.plot && (this.plot.width !== width || this.plot.height !== height)) {
      this.plot.setSize({width, height});
    }
  }

  /** Shows the window of the state with what was fetched so far. */
  refresh(hasNewData) {
    if (!this.plot) return;
    if (hasNewData) this.plot.setData(this.#data(), false);
    this.plot.setScale('x', {min: state.from, max: state.to});
  }

  #data() {
    const curves = this.numbers.map((id) => samplesOf(id) ?? empty);
    // Without any curve there is an x to place cursors by.
    if (curves.length === 0) return [[state.from, state.to], [null, null]];
    return joinCurves(curves);
  }

  #settings() {
    return {
      width: this.width,
      height: this.height,
      padding: [10, 14, 0, (this.options.axes - this.units.length) * axisWidth],
      legend: {show: false},
      scales: {x: {time: false, range: () => [state.from, state.to]}, ...this.#yScales()},
      axes: [this.#xAxis(), ...this.units.map((unit, place) => this.#yAxis(unit, place))],
      series: [{}, ...this.#series()],
      cursor: {drag: {x: false, y: false}, sync: {key: 'time', setSeries: false}, y: false,
               points: {size: 7}},
      hooks: {
        drawAxes: [(plot) => drawBands(plot, this.texts)],
        draw: [(plot) => drawMarks(plot)],
        setCursor: [(plot) => this.options.onCursor(plot)],
      },
    };
  }

  #yScales() {
    const lanes = this.texts.length * laneHeight;
    return Object.fromEntries(this.units.map((unit) => [`y ${unit}`, {
      range: (plot, low, high) => {
        if (low === null || !Number.isFinite(low)) return [0, 1];
        const extent = high > low ? high - low : Math.abs(high) || 1;
        const part = Math.min(0.7, lanes / Math.max(1, this.height - 50));
        const padding = extent * 0.06;
        const below = (extent + 2 * padding) * part / (1 - part);
        return [low - padding - below, high + padding];
      },
    }]));
  }

  #series() {
    const paths = state.hasSteps ? uPlot.paths.stepped({align: 1}) : undefined;
    if (this.numbers.length === 0) return [{scale: 'y', show: false}];
    return this.numbers.map((id) => ({
      scale: `y ${channelOf(id).unit}`,
      stroke: colourOf(this.ids.indexOf(id)),
      width: 1.4,
      paths,
      points: {size: 4, space: 8},
    }));
  }

  #xAxis() {
    return {
      stroke: styleColour('--ink-soft'), font, size: this.options.isLast ? 34 : 26, gap: 4,
      grid: {stroke: styleColour('--grid'), width: 1},
      ticks: {show: false},
      space: state.isAbsolute ? 100 : 70,
      values: (plot, splits) => splits.map((time) => timeText(time, splits[1] - splits[0])),
    };
  }

  #yAxis(unit, place) {
    const own = this.numbers.filter((id) => channelOf(id).unit === unit);
    const colour = own.length === 1 && this.units.length > 1 ?
        colourOf(this.ids.indexOf(own[0])) : styleColour('--ink-soft');
    return {
      scale: `y ${unit}`, side: 3, size: axisWidth - 16, labelSize: 16, gap: 4,
      stroke: colour, font, labelFont: font, label: unit || ' ', labelGap: 0,
      grid: {show: place === 0, stroke: styleColour('--grid'), width: 1},
      ticks: {show: false},
      values: (plot, splits) => splits.map(shortNumber),
    };
  }
}
