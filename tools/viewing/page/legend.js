import {channelOf, fullName} from './files.js';
import {colourOf} from './colours.js';
import {element} from './element.js';
import {shortNumber} from './number.js';
import {samplesOf} from './samples.js';
import {state} from './state.js';

const shown = (value) => (value === null ? '–' : typeof value === 'number' ? shortNumber(value) : value);

function marks(values) {
  const [a, b] = values;
  if (state.cursors.length === 0 || a === undefined) return '';
  if (state.cursors.length === 1 || b === undefined) return `A ${shown(a)}`;
  const isNumber = typeof a === 'number' && typeof b === 'number';
  return `A ${shown(a)}  B ${shown(b)}${isNumber ? `  Δ ${shown(b - a)}` : ''}`;
}

function statisticsText(found) {
  if (found.values === 0) return found.gaps ? `${found.gaps} invalid` : 'no samples here';
  const about = found.isAbout ? 'about ' : '';
  const parts = [`${about}min ${shortNumber(found.minimum)}`, `max ${shortNumber(found.maximum)}`,
                 `mean ${shortNumber(found.mean)}`];
  if (found.deviation !== null) parts.push(`σ ${shortNumber(found.deviation)}`);
  parts.push(`n ${shortNumber(found.values)}`);
  if (found.gaps) parts.push(`${shortNumber(found.gaps)} invalid`);
  if (found.width > 1) parts.push(`from groups of ${found.width} samples`);
  return parts.join('  ');
}

/** The row of a panel with a channel's name, its values at cursors, and its statistics. */
function makeRow(id, place, onRemove) {
  const channel = channelOf(id);
  const value = element('span.value');
  const atMarks = element('span.marks');
  const statistics = element('span.statistics');
  const swatch = element('span.swatch', {'aria-hidden': 'true'});
  swatch.style.background = channel.isText ? 'var(--ink-faint)' : colourOf(place);
  const row = element('li.entry', {title: `${channel.fileName}, ${channel.group}`}, swatch,
      element('span.name', {}, fullName(channel)), value,
      element('span.unit', {}, channel.unit), atMarks, statistics,
      element('button.remove', {'aria-label': `Remove ${channel.name}`, title: 'Remove',
                                click: () => onRemove(id)}, '×'));
  return {row, value, atMarks, statistics};
}

/** What stands above a panel. */
export function makeLegend(ids, {onRemove}) {
  const rows = new Map(ids.map((id, place) => [id, makeRow(id, place, onRemove)]));
  return {
    element: element('ul.legend', {}, ...[...rows.values()].map(({row}) => row)),
    showValue: (id, value) => rows.get(id).value.replaceChildren(shown(value)),
    showMarks: (id, values) => rows.get(id).atMarks.replaceChildren(marks(values)),
    /** Says that a channel is on its way; a large one is read for a while when it is first shown. */
    showWaiting: (id, isWaiting) => {
      const {row, statistics} = rows.get(id);
      if (isWaiting) statistics.replaceChildren('reading…');
      else if (row.classList.contains('waiting')) statistics.replaceChildren();
      row.classList.toggle('waiting', isWaiting);
    },
    showStatistics: (id, found) => {
      if (rows.get(id).row.classList.contains('waiting')) return;
      const outOfOrder = samplesOf(id)?.outOfOrder ?? 0;
      rows.get(id).statistics.replaceChildren(statisticsText(found) +
          (outOfOrder ? `  ${shortNumber(outOfOrder)} at times that fall, not drawn` : ''));
    },
  };
}
