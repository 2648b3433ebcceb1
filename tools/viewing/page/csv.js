/** A field of a table, in quotation marks where it needs them. */
const field = (text) => (/[",\r\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text);

/**
 * A number in the shortest digits that read back to the same one; '' for NaN.
 * @param {boolean} isSingle whether it is one of 32 bits
 */
export function printed(number, isSingle = false) {
  if (Number.isNaN(number)) return '';
  if (!Number.isFinite(number)) return number > 0 ? 'inf' : '-inf';
  if (!isSingle) return String(number);
  for (let digits = 1; digits < 9; ++digits) {
    const text = Number(number.toPrecision(digits));
    if (Math.fround(text) === number) return String(text);
  }
  return String(number);
}

/** A time, with as many decimal places as suffice for all of them where that is known. */
function printedTime(time, decimals) {
  const isExact = decimals !== null && Math.abs(time) * 10 ** decimals < Number.MAX_SAFE_INTEGER;
  return printed(isExact ? Number(time.toFixed(decimals)) : time);
}

const titled = (name, unit) => field(unit ? `${name} [${unit}]` : name);

/** The columns of a table: [title, text of a place]. */
function columnsOf(column, isWhole, {begins, ends}) {
  const {name, unit, text, single, levels} = column;
  const isShared = (place) => ends[place - 1] === begins[place] || begins[place + 1] === begins[place];
  const textAt = (place) => levels.text(begins[place], ends[place], isShared(place)) ?? '';
  if (text) return [[titled(name, unit), (place) => field(textAt(place))]];
  if (isWhole) return [[titled(name, unit), (place) => printed(levels.lists.numbers[place], single)]];
  return ['minimum', 'mean', 'maximum', 'values'].map((which) =>
    [titled(`${name} ${which}`, which === 'values' ? '' : unit),
     (place) => printed(levels.lists[which][place], single && which !== 'mean')]);
}

/**
 * Samples between two times as comma-separated values. Where groups of samples are all that is known,
 * a row is one of these, with the times of its first and its last sample.
 */
export function tableText(master, columns, axis, from, to) {
  const isWhole = axis.width === 1;
  const {name, unit, decimals} = master ?? {name: 'record', unit: '', decimals: null};
  const times = isWhole ? [[titled(name, unit), (place) => printedTime(axis.begins[place], decimals)]] :
    [[titled(`${name} first`, unit), (place) => printedTime(axis.begins[place], decimals)],
     [titled(`${name} last`, unit), (place) => printedTime(axis.ends[place], decimals)]];
  const all = [...times, ...columns.flatMap((column) => columnsOf(column, isWhole, axis))];
  let text = `${all.map(([title]) => title).join(',')}\n`;
  for (let place = 0; place < axis.begins.length; ++place) {
    if (axis.ends[place] < from || axis.begins[place] > to) continue;
    text += `${all.map(([, cell]) => cell(place)).join(',')}\n`;
  }
  return text;
}
