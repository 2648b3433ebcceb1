import {byId} from './element.js';
import {change, onChange, state} from './state.js';

/** Colours that are told apart on dark and on light ground, also by who sees few of them. */
const dark = ['#6cb6ff', '#f0a35e', '#7fd18c', '#e58fb8', '#c3a6ff', '#e6d36a', '#5fd3d0', '#ff8f80'];
const light = ['#0b5cad', '#b45309', '#1a7f37', '#a8327a', '#6b3fc4', '#7d6a00', '#0f7b78', '#b3261e'];

export function isDark() {
  return document.documentElement.dataset.theme === 'dark';
}

/** The colour of a panel's curve, by its place. */
export function colourOf(place) {
  const colours = isDark() ? dark : light;
  return colours[place % colours.length];
}

/** The colour of a text, which is the same wherever it comes. */
export function bandColour(code) {
  const hue = (code * 137.508 + 210) % 360;
  return isDark() ? `hsl(${hue} 38% 36%)` : `hsl(${hue} 55% 80%)`;
}

/** A colour of the style sheet. */
export function styleColour(name) {
  return getComputedStyle(document.documentElement).getPropertyValue(name).trim();
}

const systemIsDark = matchMedia('(prefers-color-scheme: dark)');

/** Takes the theme that was chosen, or else that of the system. */
export function applyTheme() {
  const theme = state.theme ?? (systemIsDark.matches ? 'dark' : 'light');
  document.documentElement.dataset.theme = theme;
  byId('theme').textContent = theme === 'dark' ? 'Light' : 'Dark';
}

onChange((names) => {
  if (names.has('theme')) applyTheme();
});
systemIsDark.addEventListener('change', () => change({theme: state.theme}));
