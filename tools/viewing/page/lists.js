import {askJson} from './api.js';
import {files} from './files.js';
import {byId, element} from './element.js';
import {shortNumber} from './number.js';
import {act} from './panels.js';
import {report} from './report.js';
import {change, state} from './state.js';
import {timeText} from './clock.js';
import {showMessage} from './message.js';

const titleOf = (file) => element('h2', {title: file.info.file}, file.info.file.replace(/^.*\//, ''));

function facts(pairs) {
  return element('dl', {}, ...pairs.filter(([, value]) => value !== null && value !== '')
      .flatMap(([name, value]) => [element('dt', {}, name), element('dd', {}, String(value))]));
}

function shiftInput(number) {
  const id = `shift-${number}`;
  return element('p.shift', {}, element('label', {for: id}, 'Time shift in s'),
      element('input', {id, type: 'number', step: 'any', value: state.shifts[number] ?? 0,
                        change: (event) => {
                          const shift = Number(event.target.value);
                          if (!Number.isFinite(shift)) return;
                          change({shifts: {...state.shifts, [number]: shift}});
                        }}));
}

function attachmentList(file) {
  if (file.attachments.length === 0) return null;
  return element('div', {}, element('h3', {}, 'Attachments'), element('ul.plain', {},
      ...file.attachments.map((each) => element('li', {}, each.name || 'without a name',
          element('span.quiet', {}, ` ${each.mime_type}${
            each.original_size === null ? '' : `, ${shortNumber(each.original_size)} bytes`}`)))));
}

const shownChannels = (file) => file.tables.reduce((sum, {columns}) => sum + columns.length, 0);

/** What a report has of a file, and what it has not. */
function reportFacts(number) {
  const widths = report.samples[number].map(({width}) => width);
  const widest = Math.max(...widths);
  const samples = widest > 1 ?
    `Of up to ${widest} samples at a time, their lowest, highest, first and last value and their mean.` :
    'Each chosen sample is in it.';
  return element('div', {}, element('h3', {}, 'This report'), element('ul.plain', {}, ...[
    `It has ${shownChannels(files[number])} channels; the file may have more.`, samples,
    'Frames of buses and data of attachments are not in it.'].map((text) => element('li', {}, text))));
}

/** What `mdf info` says of each file. */
export function showFacts() {
  byId('file').replaceChildren(...files.map((file, number) => {
    const {info} = file;
    return element('section', {}, titleOf(file), facts([
      ['Bytes', info.bytes.toLocaleString('en')], ['Version', info.version_text],
      ['Written by', info.program], ['State', info.finished === false ? 'unfinished' : 'finished'],
      ['Start', info.start.local ?? info.start.utc], ['Duration', info.duration && `${info.duration} s`],
      ['Channels', info.channels], ['Groups', info.group_count ?? info.groups.length],
      ['Comment', info.comment], ...Object.entries(info.properties)]),
    files.length > 1 ? shiftInput(number) : null, report ? reportFacts(number) : null, attachmentList(file));
  }));
}

function goTo(time) {
  const [from, to] = act.window();
  const isInside = time > from && time < to;
  const half = (to - from) / 2;
  change({cursors: [time], ...(isInside ? {} : {from: time - half, to: time + half})});
}

/** The events of each file; one that is chosen is gone to. */
export function showEvents() {
  byId('events').replaceChildren(...files.map((file, number) => element('section', {}, titleOf(file),
      file.events.length === 0 ? element('p.quiet', {}, 'No events.') :
      element('ul.plain', {}, ...file.events.map((event) => {
        const time = event.position + (state.shifts[number] ?? 0);
        const isTime = event.unit === 's';
        return element('li', {}, element('button.row', {disabled: !isTime, click: () => goTo(time)},
            element('span.name', {}, event.name || event.type),
            element('span.quiet', {}, isTime ? `${timeText(time)} s` :
                                               `${shortNumber(event.position)} ${event.unit ?? ''}`),
            event.comment ? element('span.comment', {}, event.comment) : null));
      })))));
}

const findingRow = (finding) => element('li.finding', {},
    element(`span.severity.${finding.severity}`, {}, finding.severity),
    element('span.name', {}, finding.code), element('p', {}, finding.text),
    element('p.quiet', {}, `at ${finding.offset} ${finding.path}`));

async function check(number, target) {
  target.replaceChildren(element('p.quiet', {role: 'status'}, 'Reading all of it…'));
  try {
    const {count, findings} = await askJson('findings', {file: number});
    target.replaceChildren(
        element('p', {role: 'status'}, count === 0 ? 'Nothing found.' : `${count} found.`),
        element('ul.plain', {}, ...findings.map(findingRow)));
  } catch (error) {
    showMessage(error.message);
  }
}

/** What was found while reading, and what a check finds. */
export function showFindings() {
  let count = 0;
  byId('findings').replaceChildren(...files.map((file, number) => {
    const target = element('div', {}, element('ul.plain', {}, ...file.findings.map(findingRow)));
    count += file.findings.length;
    return element('section', {}, titleOf(file),
        report ? element('p.quiet', {}, 'Found while these channels were read; mdf check looks at all of a file.') :
          element('button', {click: () => check(number, target)}, 'Check the whole file'), target);
  }));
  byId('tab-findings').classList.toggle('alarm', count > 0);
}

/** Tabs, by mouse and by arrow keys. */
export function listenToTabs() {
  const tabs = [...byId('tabs').children];
  const choose = (tab) => {
    for (const other of tabs) {
      const isChosen = other === tab;
      other.setAttribute('aria-selected', String(isChosen));
      other.tabIndex = isChosen ? 0 : -1;
      byId(other.getAttribute('aria-controls')).hidden = !isChosen;
    }
  };
  tabs.forEach((tab, place) => {
    tab.addEventListener('click', () => choose(tab));
    tab.addEventListener('keydown', (event) => {
      const by = {ArrowRight: 1, ArrowLeft: -1}[event.key];
      if (!by) return;
      event.stopPropagation();
      const next = tabs[(place + by + tabs.length) % tabs.length];
      choose(next);
      next.focus();
    });
  });
}
