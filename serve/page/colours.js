// The page's colours and their inks, and what would change one.
import { element } from "./controls.js";

const INKS = { red: "prints red", black: "prints black", none: "not printed" };

export function percent(share) {
  const value = share * 100;
  return `${value >= 10 ? value.toFixed(0) : value >= 0.1 ? value.toFixed(1) : value > 0 ? "<0.1" : "0"} %`;
}

function parts(colour) {
  const all = colour.none + colour.black + colour.red || 1;
  return element("span", { class: "parts" }, ...["black", "red", "none"].map((ink) => {
    const part = element("i", { class: ink });
    part.style.width = `${colour[ink] / all * 100}%`;
    return part;
  }));
}

function patch(rgb) {
  const made = element("span", { class: "colour" });
  made.style.background = rgb;
  return made;
}

// `picked(rgb)` is called for the swatch that is clicked.
export function showSwatches(place, colours, turned, picked) {
  place.replaceChildren(...colours.map((colour) => {
    const mixed = [colour.black, colour.red, colour.none].filter((share) => share > 0).length > 1;
    const button = element("button", { type: "button", title: `${colour.rgb}, and colours like it` },
      patch(colour.rgb),
      element("span", { class: `ink ${colour.ink}` }, colour.ink === "none" ? "not printed" : colour.ink,
        element("small", {}, percent(colour.share)), ...(mixed ? [parts(colour)] : [])));
    button.dataset.rgb = colour.rgb;
    button.dataset.ink = colour.ink;
    button.classList.toggle("turned", turned.has(colour.rgb));
    button.addEventListener("click", () => picked(colour.rgb));
    return element("li", {}, button);
  }));
}

function turnedText(turned) {
  const others = [];
  for (const ink of ["red", "black", "none"]) {
    const colours = turned.filter((one) => one[ink] > 0);
    if (colours.length === 0) continue;
    const share = colours.reduce((sum, one) => sum + one[ink], 0);
    const what = ink === "none" ? "is not printed any more" : `turns ${ink}`;
    others.push(element("li", {}, `${percent(share)} of the page's ink ${what}: `,
      ...colours.slice(0, 8).map((one) => {
        const chip = patch(one.rgb);
        chip.style.display = "inline-block";
        chip.style.width = "1.6em";
        chip.style.height = "1em";
        return chip;
      })));
  }
  return others;
}

// What was found at a place, or of a swatch. `actions` has want(ink, rgb) and
// set(keyword, value); `nameOf(keyword)` is what a dialog calls an option.
export function showPlace(place, found, actions, nameOf) {
  const dark = Math.round((255 - found.grey) / 255 * 100);
  const grey = found.ink === "none" ? "" : `, ${dark} % dark (grey ${found.grey})`;
  const buttons = ["red", "black"].filter((ink) => ink !== found.ink).map((ink) => {
    const button = element("button", { type: "button", id: `want-${ink}` }, `Make it ${ink}`);
    button.addEventListener("click", () => actions.want(ink, found.rgb));
    return button;
  });
  const steps = found.steps.map((step) => {
    const button = element("button", { type: "button" }, "set");
    button.addEventListener("click", () => actions.set(step.keyword, step.value));
    return element("li", {}, `${nameOf(step.keyword)} ${step.value}: ${INKS[step.ink]} `, button);
  });
  place.replaceChildren(
    element("div", { class: "head" }, patch(found.rgb),
      element("div", {}, element("strong", { class: `ink ${found.ink}`, id: "place-ink" }, INKS[found.ink]), grey,
        element("br"), `colour ${found.rgb} (red ${parseInt(found.rgb.slice(1, 3), 16)}, ` +
        `green ${parseInt(found.rgb.slice(3, 5), 16)}, blue ${parseInt(found.rgb.slice(5), 16)})`)),
    element("div", { class: "actions" }, ...buttons), element("div", { id: "turned" }),
    ...(steps.length > 0
      ? [element("p", { class: "hint" }, "A bound alone would change it:"), element("ul", {}, ...steps)]
      : [element("p", { class: "hint" }, "No bound of the range changes it.")]));
}

export function showTurned(answer) {
  const lines = answer.why ? [element("li", {}, answer.why)] : turnedText(answer.turned);
  document.getElementById("turned").replaceChildren(element("p", { class: "hint" }, answer.why ? "That cannot be:" : "What turns with it:"),
    element("ul", {}, ...(lines.length > 0 ? lines : [element("li", {}, "nothing else")])));
}
