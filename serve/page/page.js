// What the page does: it keeps the settings, asks for pictures and has told what is found.
import { Controls } from "./controls.js";
import { Paper } from "./paper.js";
import { Findings } from "./findings.js";
import { ask, byId, MM, say, state, tab } from "./state.js";

const LEAST_DPI = 10;
const MOST_DPI = 1440;
const STARVED = 200;  // milliseconds without a new picture while a slider moves

let printer;        // the options, from the server
let look = { x: 0, y: 0, dpi: 60 };
let fitted = true;
let size = { width: 210, height: 297 };  // of the paper, millimetres
let past = [];
let future = [];
let changing = null;  // the option that the last step back is about
let underWay = 0;
let paintedAt = 0;
let waiting = false;
let controls;

const print = new Paper(byId("print"), (query, signal) => ask("paper", query, signal), (how) => move(how, false));
const original = new Paper(byId("original"), (query, signal) => ask("original", query, signal), (how) => move(how, true));
const findings = new Findings({
  grant, unmark, set: (keyword, name) => change(keyword, name, false), nameOf: (keyword) => controls.textOf(keyword),
});

// Pictures

async function showPrint() {
  const mine = state.turn;
  const asked = performance.now();
  waiting = false;
  underWay += 1;
  byId("busy").hidden = false;
  const pins = byId("pins").checked ? 1 : 0;
  const done = await print.show(look, { tab, turn: mine, pins });
  underWay -= 1;
  if (underWay === 0) byId("busy").hidden = true;
  if (done) painted(mine, performance.now() - asked);
  if (waiting && underWay === 0) void showPrint();
}

function painted(mine, milliseconds) {
  paintedAt = performance.now();
  // Of a turn's first picture: another look at it costs less.
  if (document.body.dataset.turn !== String(mine)) document.body.dataset.milliseconds = milliseconds.toFixed(1);
  document.body.dataset.turn = mine;
  if (!fitTo(print.piece)) findings.soon();
}

// Another size of paper than was thought.
function fitTo(piece) {
  const found = { width: piece.width / piece.dpi * MM, height: piece.height / piece.dpi * MM };
  const other = Math.abs(found.width - size.width) + Math.abs(found.height - size.height) > 1.5;
  size = found;
  if (!other || !fitted) return false;
  fit();
  return true;
}

async function showOriginal() {
  await original.show(look, {});
}

function redraw() {
  print.resize();
  original.resize();
  byId("zoom").textContent = `${Math.round(look.dpi / print.fine)} dpi`;
  void showPrint();
  if (byId("layout").value !== "none") void showOriginal();
}

// While a slider moves a run may be ended for a newer one, but not so often that nothing is
// ever seen.
function printSoon(held) {
  if (held && underWay > 0 && performance.now() - paintedAt > STARVED) {
    waiting = true;
    return;
  }
  void showPrint();
}

// Settings

const ofRaster = (one) => JSON.stringify(["PageSize", "Resolution", "PdfPreprocess"].map((key) => one[key] ?? ""));

function use(next, held = false) {
  const sameRaster = ofRaster(next) === ofRaster(state.settings);
  state.settings = next;
  state.turn += 1;
  say("");
  controls.show(state.settings);
  history.replaceState(null, "", `#${fragment()}`);
  byId("undo").disabled = past.length === 0;
  byId("redo").disabled = future.length === 0;
  printSoon(held);
  if (!sameRaster) void showOriginal();
  void findings.lines();
}

// Presses of keys on one control are one step, and so is the drag of a slider.
function remember() {
  changing = null;
  past.push(state.settings);
  if (past.length > 200) past.shift();
  future = [];
}

function change(keyword, name, held) {
  const next = { ...state.settings, [keyword]: name };
  if (controls.rows.get(keyword).usual === name) delete next[keyword];
  const same = (state.settings[keyword] ?? controls.rows.get(keyword).usual) === name;
  if (!same && changing !== keyword) remember();
  changing = keyword;
  state.turned = new Set();
  if (!same) use(next, held);
  else if (!held) printSoon(false);
}

function step(from, to) {
  if (from.length === 0) return;
  to.push(state.settings);
  changing = null;
  state.turned = new Set();
  use(from.pop());
}

function fragment() {
  const parts = new URLSearchParams();
  if (state.page !== 1) parts.set("page", state.page);
  for (const [keyword, name] of Object.entries(state.settings)) parts.set(keyword, name);
  return parts.toString();
}

// What stands behind "#", as far as the printer knows it.
function settingsOfFragment() {
  const found = {};
  for (const [keyword, name] of new URLSearchParams(location.hash.slice(1))) {
    const option = printer.groups.flatMap((group) => group.options).find((one) => one.keyword === keyword);
    if (option?.usual !== name && option?.choices.some((choice) => choice.name === name)) found[keyword] = name;
  }
  return found;
}

function pageOfFragment() {
  return Math.max(1, Number(new URLSearchParams(location.hash.slice(1)).get("page")) || 1);
}

function pickPlace({ x, y }) {
  if (x < 0 || y < 0) return;
  const reach = Math.min(1, 2.5 * original.fine / look.dpi * MM);
  original.marks = [{ x, y }];
  original.paint();
  void findings.pick({ x: x.toFixed(3), y: y.toFixed(3), reach: reach.toFixed(3) });
}

// Of a colour, which is everywhere.
function unmark() {
  original.marks = [];
  original.paint();
}

// What a wish came to.
function grant(found) {
  remember();
  state.turned = new Set(found.turned.map((one) => one.rgb));
  use(found.settings);
}

// Where one looks

function fit() {
  fitted = true;
  const canvas = byId("print");
  print.resize();
  const room = (pixels) => (pixels - print.ruler - 16 * print.fine) * MM;
  const dpi = Math.floor(Math.min(room(canvas.width) / size.width, room(canvas.height) / size.height));
  look = { dpi: Math.min(Math.max(dpi, LEAST_DPI), MOST_DPI), x: 0, y: 0 };
  const gap = 8 * print.fine / look.dpi * MM;
  look.x = -gap;
  look.y = -gap;
  redraw();
}

function zoomTo(dpi, about) {
  fitted = false;
  const next = Math.min(Math.max(Math.round(dpi), LEAST_DPI), MOST_DPI);
  const keep = about ?? { x: look.x + print.canvas.width / 2 / look.dpi * MM, y: look.y + print.canvas.height / 2 / look.dpi * MM };
  look = { dpi: next, x: keep.x - (keep.x - look.x) * look.dpi / next, y: keep.y - (keep.y - look.y) * look.dpi / next };
  redraw();
}

function ownDpi() {
  const name = state.settings.Resolution ?? controls.rows.get("Resolution")?.usual ?? "180dpi";
  return Math.max(...name.match(/\d+/g).map(Number));
}

function move(how, onOriginal) {
  if (how.click) {
    if (onOriginal) pickPlace(how.click);
  } else if (how.zoom) {
    zoomTo(look.dpi * (how.zoom > 0 ? 1.25 : 0.8), how.about);
  } else {
    fitted = false;
    look = { ...look, x: how.x, y: how.y };
    redraw();
  }
}

function pan(dx, dy) {
  const mm = 60 / look.dpi * MM;
  move({ x: look.x + dx * mm, y: look.y + dy * mm }, false);
}

const KEYS = {
  "+": () => zoomTo(look.dpi * 1.25), "-": () => zoomTo(look.dpi * 0.8), 0: fit, 1: () => zoomTo(ownDpi()),
  ArrowLeft: () => pan(-1, 0), ArrowRight: () => pan(1, 0), ArrowUp: () => pan(0, -1), ArrowDown: () => pan(0, 1),
};

function onKey(event) {
  const undo = event.ctrlKey && event.key.toLowerCase() === "z";
  const typing = ["INPUT", "SELECT"].includes(event.target.tagName);
  if (undo) (event.shiftKey ? () => step(future, past) : () => step(past, future))();
  else if (!typing && !event.ctrlKey && KEYS[event.key]) KEYS[event.key]();
  else return;
  event.preventDefault();
}

function turnPage(to) {
  state.page = Math.max(1, Math.round(to) || 1);
  byId("page").value = state.page;
  state.picked = null;
  original.marks = [];
  use(state.settings);
  void showOriginal();
}

function listen() {
  byId("undo").addEventListener("click", () => step(past, future));
  byId("redo").addEventListener("click", () => step(future, past));
  byId("reset").addEventListener("click", () => { remember(); state.turned = new Set(); use({}); });
  byId("page").addEventListener("change", (event) => turnPage(Number(event.target.value)));
  byId("smaller").addEventListener("click", () => zoomTo(look.dpi * 0.8));
  byId("larger").addEventListener("click", () => zoomTo(look.dpi * 1.25));
  byId("fit").addEventListener("click", fit);
  byId("dots").addEventListener("click", () => zoomTo(ownDpi()));
  byId("pins").addEventListener("change", () => void showPrint());
  byId("layout").addEventListener("change", (event) => {
    byId("views").className = event.target.value;
    if (fitted) fit(); else redraw();
  });
  for (const button of document.querySelectorAll("[data-copy]")) {
    button.addEventListener("click", () => navigator.clipboard.writeText(byId(button.dataset.copy).textContent));
  }
  window.addEventListener("resize", () => { if (fitted) fit(); else redraw(); });
  window.addEventListener("hashchange", () => {
    remember();
    state.page = pageOfFragment();
    byId("page").value = state.page;
    use(settingsOfFragment());
    void showOriginal();
  });
  document.addEventListener("keydown", onKey);
  for (const end of ["pointerdown", "focusout"]) {
    byId("controls").addEventListener(end, () => { changing = null; });
  }
}

async function start() {
  const answer = await ask("options", {});
  if (!answer) return;
  printer = await answer.json();
  const small = document.createElement("small");
  small.textContent = ` ${printer.document}, ${printer.ppd}`;
  byId("title").append(small);
  document.title = `${printer.document} - Velka`;
  controls = new Controls(byId("controls"), printer.groups, change);
  state.page = location.hash ? pageOfFragment() : printer.page;
  byId("page").value = state.page;
  state.settings = location.hash ? settingsOfFragment() : printer.settings;
  controls.show(state.settings);
  history.replaceState(null, "", `#${fragment()}`);
  listen();
  void findings.lines();
  fit();
}

void start();
