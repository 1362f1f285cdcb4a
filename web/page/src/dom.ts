// Elements in one expression. Text always becomes text nodes, never markup.

type Child = Node | string
type Properties = Record<string, string | number | boolean | undefined>

const SVG = 'http://www.w3.org/2000/svg';

function fill(element: Element, attributes: Properties, children: Child[]): void {
  for (const [name, value] of Object.entries(attributes)) {
    if (value !== undefined && value !== false) {
      element.setAttribute(name, value === true ? '' : String(value));
    }
  }
  element.append(...children);
}

export function el<Name extends keyof HTMLElementTagNameMap>(
  name: Name, attributes: Properties = {}, ...children: Child[]): HTMLElementTagNameMap[Name] {
  const element = document.createElement(name);
  fill(element, attributes, children);
  return element;
}

export function svg<Name extends keyof SVGElementTagNameMap>(
  name: Name, attributes: Properties = {}, ...children: Child[]): SVGElementTagNameMap[Name] {
  const element = document.createElementNS(SVG, name);
  fill(element, attributes, children);
  return element;
}

export function button(text: string, onClick: () => void, attributes: Properties = {}): HTMLButtonElement {
  const element = el('button', { type: 'button', ...attributes }, text);
  element.addEventListener('click', onClick);
  return element;
}

/** The element of the page with this id, which the page's own markup holds. */
export function byId<Kind extends HTMLElement>(id: string): Kind {
  const element = document.getElementById(id);
  if (!element) {
    throw new Error(`the page has no element ${id}`);
  }
  return element as Kind;
}
