import assert from 'node:assert/strict';
import {test} from 'node:test';
import {files, wholeRange, widen} from '../../tools/viewing/page/files.js';
import {joinCurves} from '../../tools/viewing/page/join.js';
import {shortNumber, shortSpan} from '../../tools/viewing/page/number.js';
import {fromHash, state, toHash} from '../../tools/viewing/page/state.js';

test('curves are laid over one x: null for gaps, undefined where another has a point', () => {
  const none = undefined;
  assert.deepEqual(
      joinCurves([{x: [0, 1, 2], y: [5, NaN, 6]}, {x: [1, 1, 3], y: [7, 8, 9]}]),
      [[0, 1, 1, 2, 3], [5, null, none, 6, none], [none, 7, 8, none, 9]]);
  assert.deepEqual(joinCurves([]), [[]]);
});

test('numbers and spans are short', () => {
  assert.deepEqual([0, 1.5, 99999, 25e9, 1 / 3, 1e-9, -250000, NaN].map(shortNumber),
                   ['0', '1.5', '99999', '25 G', '0.333333', '1.000e-9', '-250 k', '–']);
  assert.deepEqual([0, 12.5, 0.25, 2e-6, 3e-9].map(shortSpan), ['0 s', '12.5 s', '250 ms', '2 µs', '3 ns']);
});

test('the address brings back what it was made of', () => {
  Object.assign(state, {panels: [['0.0.1', '0.0.2'], ['1.0.3']], from: -1.5, to: 20, cursors: [3, 4.25],
                        shifts: {0: 0, 1: -2e-7}, isAbsolute: true, hasSteps: true, theme: 'dark'});
  const hash = toHash();
  fromHash('');
  assert.deepEqual([state.panels, state.from, state.cursors, state.shifts], [[], null, [], {}]);
  fromHash(`#${hash}`);
  assert.deepEqual(state, {panels: [['0.0.1', '0.0.2'], ['1.0.3']], from: -1.5, to: 20, cursors: [3, 4.25],
                           shifts: {1: -2e-7}, isAbsolute: true, hasSteps: true, theme: 'dark'});
});

test('all of a file is what its groups state, its records without times, and what was fetched', () => {
  const show = (tables, groups) => files.splice(0, 1, {tables, info: {groups}});
  show([{group: 0, has_master: true}, {group: 1, has_master: false}],
       [{group: 0, span: {from: -1, to: 5}, records: 600}, {group: 1, span: null, records: 8}]);
  assert.deepEqual(wholeRange({}), [-1, 7]);
  // A report's tables have their masters apart.
  show([{group: 0, has_master: false, master: {}}], [{group: 0, span: null, records: 9}]);
  assert.deepEqual(wholeRange({}), [0, 1]);
  show([{group: 0, has_master: true}], [{group: 0, span: {from: 1e17, to: 1e17}, records: 1}]);
  assert.deepEqual(wholeRange({}), [1e17 - 1e8, 1e17 + 1e8]);
  // Times fall from 25 to 5.
  show([{group: 0, has_master: true}], [{group: 0, span: {from: 0, to: 5}, records: 600}]);
  widen(0, 0, 25);
  widen(0, -Infinity, Infinity);
  assert.deepEqual(wholeRange({0: 1}), [1, 26]);
});
