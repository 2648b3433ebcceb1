import assert from 'node:assert/strict';
import {test} from 'node:test';
import {printed, tableText} from '../../tools/viewing/page/csv.js';
import {NumberLevels, TextLevels, unpack} from '../../tools/viewing/page/levels.js';

const numbers = (...list) => Float64Array.from(list);
const samples = (begins, list) => new NumberLevels({width: 1, begins, ends: begins}, {numbers: list});

/** Two groups of up to four samples: 1, 3, 2, 2 at 0 to 3, and a gap and 8 at 4 and 5. */
const axis = {width: 4, begins: numbers(0, 4), ends: numbers(3, 5)};
const groups = new NumberLevels(axis, {
  minimum: numbers(1, 8), maximum: numbers(3, 8), first: numbers(1, 8), last: numbers(2, 8), mean: numbers(2, 8),
  squares: numbers(2, 0), values: numbers(4, 1), gaps: numbers(0, 1)});

test('packed numbers of each kind are read', () => {
  const blocks = ['AX8=', 'gAD//w==', 'AACAPwAAwH8=', 'mpmZmZmZuT8=', 'WyLDpCJd', '//8AAA=='];
  const read = (packed) => [...unpack(packed, (number) => blocks[number])];
  assert.deepEqual(read({type: 'i1', count: 2, block: 0}), [1, 127]);
  assert.deepEqual(read({type: 'i2', count: 2, block: 1}), [128, -1]);
  assert.deepEqual(read({type: 'i4', count: 1, block: 5}), [65535]);
  assert.deepEqual(read({type: 'f4', count: 2, block: 2}), [1, NaN]);
  assert.deepEqual(read({type: 'f8', count: 1, block: 3}), [0.1]);
  assert.deepEqual(read({type: 'text', count: 1, block: 4}), ['ä']);
  assert.deepEqual(read({type: 'same', count: 2, value: -1.5}), [-1.5, -1.5]);
  assert.deepEqual(read({type: 'same', count: 1, value: '-inf'}), [-Infinity]);
  assert.deepEqual(read({type: 'same', count: 1, value: 'nan'}), [NaN]);
});

test('stretches of many samples are told from few steps, as from all of them', () => {
  const count = 5000;
  const values = Float64Array.from({length: count}, (_, i) => (i % 11 === 3 ? NaN : (i * 7919) % 1009));
  const levels = samples(Float64Array.from({length: count}, (_, i) => i), values);
  for (const [from, to] of [[0, 4999], [17, 18], [16, 4100], [255.5, 3000.5], [4999, 9999], [-5, -1]]) {
    const inside = [...values].filter((_, i) => i >= from && i <= to);
    const finite = inside.filter(Number.isFinite);
    const found = levels.statistics(from, to);
    assert.equal(found.values, finite.length);
    assert.equal(found.gaps, inside.length - finite.length);
    if (finite.length === 0) continue;
    assert.deepEqual([found.minimum, found.maximum, found.first, found.last],
                     [Math.min(...finite), Math.max(...finite), finite[0], finite.at(-1)]);
    const mean = finite.reduce((sum, value) => sum + value) / finite.length;
    assert.ok(Math.abs(found.mean - mean) < 1e-9);
    if (finite.length < 2) continue;
    const squares = finite.reduce((sum, value) => sum + (value - mean) ** 2, 0);
    assert.ok(Math.abs(found.deviation - Math.sqrt(squares / (finite.length - 1))) < 1e-9);
    assert.equal(found.isAbout, false);
  }
});

test('a curve of few samples is these, with the neighbours of the window', () => {
  const levels = samples(numbers(0, 1, 2, 3, 4), numbers(5, Infinity, 7, 8, 9));
  assert.deepEqual(levels.curve(1.5, 2.5, 10), {isExact: true, x: numbers(1, 2, 3), y: numbers(NaN, 7, 8)});
  assert.deepEqual(levels.curve(8, 9, 10).x, numbers(4));
  assert.deepEqual(samples(numbers(), numbers()).curve(0, 1, 10).x, numbers());
});

test('a curve of many keeps the first, lowest, highest and last of each pixel', () => {
  const levels = samples(numbers(0, 1, 2, 3, 4, 5, 6, 7, 8, 9), numbers(3, 1, 9, 4, 5, 6, 2, 0, 7, NaN));
  assert.deepEqual(levels.curve(0, 10, 2),
                   {isExact: false, x: numbers(0, 4 / 3, 4 - 4 / 3, 4, 5, 5 + 4 / 3, 9),
                    y: numbers(3, 1, 9, 5, 6, 0, 7)});
});

test('of groups it is said what is known of them', () => {
  assert.deepEqual(groups.curve(0, 5, 100), {isExact: false, x: numbers(0, 2, 3, 4), y: numbers(1, 3, 2, 8)});
  assert.deepEqual(groups.value(3.5), {time: 3, value: 2});
  assert.deepEqual(groups.value(1), {time: 0, minimum: 1, maximum: 3, hasGaps: false});
  assert.deepEqual(groups.value(4.5), {time: 4, minimum: 8, maximum: 8, hasGaps: true});
  assert.equal(groups.value(-1), null);
  const {isAbout, values, mean, deviation, width} = groups.statistics(1, 5);
  assert.deepEqual([isAbout, values, mean, width], [true, 5, 3.2, 4]);
  assert.ok(Math.abs(deviation - Math.sqrt(30.8 / 4)) < 1e-12);
  assert.equal(groups.statistics(0, 5).isAbout, false);
  assert.equal(groups.statistics(3.2, 3.8).values, 0);
});

test('runs of texts are thinned out, and ambiguous ones are several', () => {
  const texts = new TextLevels(numbers(0, 1, 2, 3, 50, 50), numbers(0, 1, -1, 0, 1, 0), ['on', 'off']);
  assert.deepEqual(texts.bands(0, 100, 100).runs, [[0, 0], [1, 1], [2, -1], [3, 0], [50, 1], [50, 0]]);
  assert.deepEqual(texts.bands(0, 100, 10).runs, [[0, -2], [3, 0], [50, 1], [50, 0]]);
  assert.deepEqual([-1, 0.5, 1, 2, 50, 60].map((time) => texts.text(time)), [null, 'on', 'off', '', 'several', 'on']);
  assert.equal(texts.text(0, 0.9), 'on');
  assert.equal(texts.text(0.5, 1), 'several');
  assert.equal(texts.text(1, 1, true), 'several');
  assert.equal(texts.text(0.5, 0.5, true), 'on');
});

test('numbers have the fewest digits that tell them', () => {
  assert.deepEqual([0.1, 1e21, -0, NaN, Infinity, -Infinity].map((number) => printed(number)),
                   ['0.1', '1e+21', '0', '', 'inf', '-inf']);
  assert.equal(printed(Math.fround(0.1), true), '0.1');
  assert.equal(printed(Math.fround(16777217), true), '16777216');
});

test('where samples share a time at which a text changes, none is said to have the text', () => {
  const times = numbers(0, 1, 1, 2);
  const word = {name: 'w', unit: '', text: true, levels: new TextLevels(numbers(0, 1), numbers(0, 1), ['a', 'b'])};
  assert.equal(tableText({name: 't', unit: '', decimals: null}, [word], {width: 1, begins: times, ends: times}, 0, 9),
               't,w\n0,a\n1,several\n1,several\n2,b\n');
});

test('a table has samples, or groups with their limits', () => {
  const whole = {width: 1, begins: numbers(0, 0.30000000000000004), ends: numbers(0, 0.30000000000000004)};
  const level = {name: 'a,b', unit: 'V', levels: samples(whole.begins, numbers(1.5, NaN))};
  assert.equal(tableText({name: 'time', unit: 's', decimals: 1}, [level], whole, 0, 1), 'time [s],"a,b [V]"\n0,1.5\n0.3,\n');
  assert.equal(tableText(null, [level], whole, 0.1, 1), 'record,"a,b [V]"\n0.30000000000000004,\n');
  const word = {name: 'w', unit: '', text: true, levels: new TextLevels(numbers(0, 5), numbers(0, 1), ['on', 'off'])};
  assert.equal(tableText({name: 't', unit: '', decimals: null}, [{name: 'n', unit: 'V', levels: groups}, word], axis, 0, 9),
               't first,t last,n minimum [V],n mean [V],n maximum [V],n values,w\n' +
               '0,3,1,2,3,4,on\n4,5,8,8,8,1,several\n');
});
