import {byId} from './element.js';

let timer = 0;

/** Says what went wrong, for a while. */
export function showMessage(text) {
  const message = byId('message');
  message.textContent = text;
  message.hidden = false;
  clearTimeout(timer);
  timer = setTimeout(() => {
    message.hidden = true;
  }, 8000);
}
