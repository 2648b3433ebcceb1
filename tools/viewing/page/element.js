/**
 * Makes an element. Texts of files become text nodes, never markup.
 * @param {string} kind tag, with classes: "li.channel"
 * @param {Object} attributes functions are listeners, by the names of their events
 */
export function element(kind, attributes = {}, ...children) {
  const [tag, ...classes] = kind.split('.');
  const made = document.createElement(tag);
  made.classList.add(...classes);
  for (const [name, value] of Object.entries(attributes)) {
    if (typeof value === 'function') made.addEventListener(name, value);
    else if (value !== null && value !== false) made.setAttribute(name, value === true ? '' : value);
  }
  made.append(...children.filter((child) => child !== null));
  return made;
}

/** The element of the page with this id. */
export const byId = (id) => document.getElementById(id);
