import {answers, report} from './report.js';

/** Asks the program; paths are relative, so that the token of the page's own address is in them. */

async function ask(name, parameters) {
  const response = await fetch(`api/${name}?${new URLSearchParams(parameters)}`);
  if (!response.ok) throw new Error((await response.text()).trim());
  return response;
}

/** An answer as an object. */
export async function askJson(name, parameters = {}) {
  return report ? answers[name](parameters) : (await ask(name, parameters)).json();
}

/** An answer as a text. */
export async function askText(name, parameters = {}) {
  return report ? answers[name](parameters) : (await ask(name, parameters)).text();
}

/** The parameters that name a channel. */
export function parametersOf(channel) {
  return {file: channel.file, table: channel.table, column: channel.column};
}

/**
 * Points of a curve.
 * @returns {{isExact: boolean, first: number, last: number, records: number, outOfOrder: number,
 *   x: Float64Array, y: Float64Array}} y is NaN for gaps
 */
export async function askCurve(channel, from, to, pixels) {
  const wanted = {...parametersOf(channel), from, to, pixels};
  if (report) return answers.curve(wanted);
  const response = await ask('curve', wanted);
  const numbers = new Float64Array(await response.arrayBuffer());
  const [isExact, count, first, last, records, outOfOrder] = numbers;
  const x = numbers.subarray(6, 6 + count);
  const y = numbers.subarray(6 + count, 6 + 2 * count);
  return {isExact: isExact === 1, first, last, records, outOfOrder, x, y};
}
