/** Smallest window, in parts of what times can tell apart. */
const finest = 1e-12;

/**
 * Turns wheel, pointers and touch on a plot into a window, a place or a shift.
 * @param {HTMLElement} over what lies over the plotting area
 * @param {{window: function(): number[], setWindow: function, place: function, whole: function,
 *   shift: function}} act
 */
export function listenTo(over, act) {
  const pointers = new Map();
  let drag = null;
  const timeAt = (clientX) => {
    const box = over.getBoundingClientRect();
    const [from, to] = act.window();
    return from + (clientX - box.left) / box.width * (to - from);
  };

  over.addEventListener('wheel', (event) => {
    event.preventDefault();
    const [from, to] = act.window();
    const unit = event.deltaMode === 1 ? 16 : 1;
    if (event.shiftKey || Math.abs(event.deltaX) > Math.abs(event.deltaY)) {
      const by = (event.deltaX || event.deltaY) * unit / over.clientWidth * (to - from);
      act.setWindow(from + by, to + by);
    } else {
      zoomAt(act, timeAt(event.clientX), Math.exp(event.deltaY * unit * 0.002));
    }
  }, {passive: false});

  over.addEventListener('pointerdown', (event) => {
    if (event.button !== 0) return;
    over.setPointerCapture(event.pointerId);
    pointers.set(event.pointerId, event.clientX);
    drag = {start: event.clientX, last: event.clientX, window: act.window(), moved: false,
            kind: event.shiftKey ? 'range' : event.altKey ? 'shift' : 'pan',
            mark: null, spread: spreadOf(pointers)};
    if (drag.kind === 'range') over.append(drag.mark = makeMark());
  });

  over.addEventListener('pointermove', (event) => {
    if (!drag || !pointers.has(event.pointerId)) return;
    pointers.set(event.pointerId, event.clientX);
    drag.moved ||= Math.abs(event.clientX - drag.start) > 3;
    if (pointers.size === 2) pinch(act, drag, pointers, timeAt);
    else if (drag.moved) dragTo(event.clientX);
  });

  function dragTo(clientX) {
    const [from, to] = drag.window;
    const perPixel = (to - from) / over.clientWidth;
    if (drag.kind === 'pan') {
      const by = (drag.start - clientX) * perPixel;
      act.setWindow(from + by, to + by);
    } else if (drag.kind === 'shift') {
      act.shift((clientX - drag.last) * perPixel);
    } else {
      const left = over.getBoundingClientRect().left;
      drag.mark.style.left = `${Math.min(drag.start, clientX) - left}px`;
      drag.mark.style.width = `${Math.abs(drag.start - clientX)}px`;
    }
    drag.last = clientX;
  }

  const end = (event) => {
    pointers.delete(event.pointerId);
    if (!drag || pointers.size > 0) return;
    drag.mark?.remove();
    if (event.type === 'pointerup') {
      if (!drag.moved) act.place(timeAt(event.clientX));
      else if (drag.kind === 'range') {
        const [a, b] = [timeAt(drag.start), timeAt(event.clientX)].sort((x, y) => x - y);
        act.setWindow(a, b);
      }
    }
    drag = null;
  };
  over.addEventListener('pointerup', end);
  over.addEventListener('pointercancel', end);
  over.addEventListener('dblclick', act.whole);
}

function makeMark() {
  const mark = document.createElement('div');
  mark.className = 'range-mark';
  return mark;
}

const spreadOf = (pointers) => {
  const [a, b] = [...pointers.values()];
  return b === undefined ? 0 : Math.max(10, Math.abs(a - b));
};

function pinch(act, drag, pointers, timeAt) {
  const spread = spreadOf(pointers);
  const [a, b] = [...pointers.values()];
  if (drag.spread > 0) zoomAt(act, timeAt((a + b) / 2), drag.spread / spread);
  drag.spread = spread;
  drag.window = act.window();
}

/** Zooms around a time. */
export function zoomAt(act, time, factor) {
  const [from, to] = act.window();
  const width = (to - from) * factor;
  if (width < finest * Math.max(Math.abs(from), Math.abs(to), 1e-3) || width > 1e15) return;
  const part = (time - from) / (to - from);
  act.setWindow(time - part * width, time + (1 - part) * width);
}
