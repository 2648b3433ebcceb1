/**
 * Samples of a report: each of them, or what groups of so many that follow one another are like.
 * They answer as the program does, see Series.
 */

const readers = {
  i1: [1, 'getInt8'], i2: [2, 'getInt16'], i4: [4, 'getInt32'], f4: [4, 'getFloat32'], f8: [8, 'getFloat64'],
};
const notFinite = {nan: NaN, inf: Infinity, '-inf': -Infinity};

function bytesOf(block) {
  const characters = atob(block);
  const bytes = new Uint8Array(characters.length);
  for (let i = 0; i < bytes.length; ++i) bytes[i] = characters.charCodeAt(i);
  return bytes;
}

/** Packed numbers, or texts. @param {function(number): string} blockOf base64 by its number */
export function unpack({type, count, value, block}, blockOf) {
  if (type === 'same') return new Float64Array(count).fill(notFinite[value] ?? value);
  const bytes = bytesOf(blockOf(block));
  if (type === 'text') return JSON.parse(new TextDecoder().decode(bytes));
  const [width, name] = readers[type];
  const view = new DataView(bytes.buffer);
  const numbers = new Float64Array(count);
  for (let i = 0; i < count; ++i) numbers[i] = view[name](i * width, true);
  return numbers;
}

/** The first place whose number is not less than another, or greater than it. */
function placeOf(numbers, number, isAfter) {
  let [low, high] = [0, numbers.length];
  while (low < high) {
    const middle = (low + high) >> 1;
    if (isAfter ? numbers[middle] <= number : numbers[middle] < number) low = middle + 1;
    else high = middle;
  }
  return low;
}

const nothing = () => ({values: 0, gaps: 0, minimum: NaN, maximum: NaN, first: NaN, last: NaN, mean: NaN, squares: 0});

/** Adds what comes after. */
function append(to, later) {
  to.gaps += later.gaps;
  if (later.values === 0) return;
  if (to.values === 0) {
    Object.assign(to, later, {gaps: to.gaps});
    return;
  }
  const all = to.values + later.values;
  const step = later.mean - to.mean;
  to.squares += later.squares + step * step * (to.values * later.values / all);
  to.mean += step * (later.values / all);
  to.values = all;
  to.minimum = Math.min(to.minimum, later.minimum);
  to.maximum = Math.max(to.maximum, later.maximum);
  to.last = later.last;
}

const fan = 16;

/** What any stretch of samples or groups is like, from few steps. */
class Pyramid {
  #levels = [];

  constructor(count, at) {
    this.at = at;
    for (let width = count; width > fan; width = this.#levels.at(-1).length) {
      const below = this.#levels.at(-1);
      const level = [];
      for (let begin = 0; begin < width; begin += fan) {
        const all = nothing();
        for (let i = begin; i < Math.min(begin + fan, width); ++i) append(all, below ? below[i] : at(i));
        level.push(all);
      }
      this.#levels.push(level);
    }
  }

  of(begin, end) {
    const all = nothing();
    while (begin < end) {
      let [level, width] = [0, 1];
      while (begin % (width * fan) === 0 && begin + width * fan <= end && level < this.#levels.length) {
        width *= fan;
        ++level;
      }
      append(all, level === 0 ? this.at(begin) : this.#levels[level - 1][begin / width]);
      begin += width;
    }
    return all;
  }
}

/** Points of a stretch: a line that rises goes through its lowest value first. */
function addPoints(x, y, from, to, like) {
  const add = (time, number) => {
    x.push(time);
    y.push(number);
  };
  if (like.values === 0) return add(from, NaN);
  add(from, like.first);
  if (like.values === 1) return undefined;
  const [early, late] = like.first < like.last ? [like.minimum, like.maximum] : [like.maximum, like.minimum];
  const third = (to - from) / 3;
  if (early !== like.first) add(from + third, early);
  if (late !== like.last) add(to - third, late);
  return add(to, like.last);
}

/** A channel of numbers. */
export class NumberLevels {
  #pyramid;

  /**
   * @param {{begins: Float64Array, ends: Float64Array, width: number}} axis times, of samples or of the
   *   first and the last record of each group
   * @param {Object<string, Float64Array>} lists of samples {numbers}, or what groups are like
   */
  constructor(axis, lists) {
    Object.assign(this, axis);
    this.lists = lists;
    this.#pyramid = new Pyramid(this.begins.length, (place) => this.#at(place));
  }

  get isWhole() {
    return this.width === 1;
  }

  #at(place) {
    const {numbers, values, gaps, minimum, maximum, first, last, mean, squares} = this.lists;
    if (!this.isWhole) {
      return {values: values[place], gaps: gaps[place], minimum: minimum[place], maximum: maximum[place],
              first: first[place], last: last[place], mean: mean[place], squares: squares[place]};
    }
    const number = numbers[place];
    if (!Number.isFinite(number)) return {...nothing(), gaps: 1};
    return {values: 1, gaps: 0, minimum: number, maximum: number, first: number, last: number, mean: number,
            squares: 0};
  }

  /** The places that a window has something of. */
  #places(from, to) {
    return [placeOf(this.ends, from, false), placeOf(this.begins, to, true)];
  }

  /** The curve, from what is before the window to what is after it. */
  curve(from, to, pixels) {
    let [begin, end] = this.#places(from, to);
    begin = Math.max(0, begin - 1);
    end = Math.min(this.begins.length, Math.max(end, begin) + 1);
    if (this.isWhole && end - begin <= 4 * pixels) {
      return {isExact: true, x: this.begins.slice(begin, end),
              y: this.lists.numbers.slice(begin, end).map((y) => (Number.isFinite(y) ? y : NaN))};
    }
    const [x, y] = [[], []];
    const width = (to - from) / pixels;
    for (let next; begin < end; begin = next) {
      const pixel = Math.floor((this.begins[begin] - from) / width);
      const pixelEnd = Math.min(end, placeOf(this.begins, from + (pixel + 1) * width, false));
      next = Math.max(begin + 1, pixelEnd);
      addPoints(x, y, this.begins[begin], this.ends[next - 1], this.#pyramid.of(begin, next));
    }
    return {isExact: false, x: Float64Array.from(x), y: Float64Array.from(y)};
  }

  /** What is between two times. Groups that are there in part count whole, and `isAbout` says so. */
  statistics(from, to) {
    const [begin, end] = this.#places(from, to);
    const {squares, ...like} = this.#pyramid.of(begin, Math.max(begin, end));
    const isCut = begin < end && (this.begins[begin] < from || this.ends[end - 1] > to);
    const finite = Object.fromEntries(Object.entries(like).map(
        ([name, number]) => [name, Number.isFinite(number) ? number : null]));
    return {...finite, deviation: like.values < 2 ? null : Math.sqrt(squares / (like.values - 1)),
            isAbout: !this.isWhole && isCut, width: this.width};
  }

  /** The sample up to a time, as a number; of a group that may have several, the lowest and highest. */
  value(time) {
    const place = placeOf(this.begins, time, true) - 1;
    if (place < 0) return null;
    if (this.isWhole) return {time: this.begins[place], value: this.lists.numbers[place]};
    const {values, minimum, maximum, last, gaps} = this.#at(place);
    if (values === 0) return {time: this.ends[place], value: NaN};
    if (this.ends[place] <= time && gaps === 0) return {time: this.ends[place], value: last};
    if (minimum === maximum && gaps === 0) return {time: this.begins[place], value: minimum};
    return {time: this.begins[place], minimum, maximum, hasGaps: gaps > 0};
  }
}

/** A channel of texts. */
export class TextLevels {
  constructor(times, codes, texts) {
    Object.assign(this, {times, codes, texts});
  }

  #indexAt(time) {
    return Math.max(0, placeOf(this.times, time, true) - 1);
  }

  /** Runs of a window, thinned out to so many columns of a picture, and their texts. */
  bands(from, to, pixels) {
    const runs = [];
    const width = (to - from) / pixels;
    for (let i = this.#indexAt(from); i < this.times.length && this.times[i] <= to;) {
      const next = Math.max(this.#indexAt(Math.max(this.times[i], from) + width), i);
      if (next > i + 1) {
        runs.push([this.times[i], -2]);
        i = next;
      } else {
        runs.push([this.times[i], this.codes[i]]);
        ++i;
      }
    }
    return {runs, texts: this.texts.map((text, code) => [code, text])};
  }

  /**
   * The text from one time to another, or at one; 'several' where more of them are there.
   * @param {boolean} isShared whether other samples stand at the first time, too
   */
  text(from, to = from, isShared = false) {
    const place = placeOf(this.times, to, true) - 1;
    if (place < 0) return null;
    const code = this.codes[place];
    const isOnly = this.times[place] < from || this.times[place] === from && !isShared && this.times[place - 1] !== from;
    return code === -2 || !isOnly ? 'several' : this.texts[code] ?? '';
  }
}
