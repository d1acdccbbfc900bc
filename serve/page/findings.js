// What is told beside the pictures, once they are there.
import { showPlace, showSwatches, showTurned } from "./colours.js";
import { ask, byId, queryOf, state, tab } from "./state.js";

// None where another setting came meanwhile.
async function answerOf(what, more) {
  const mine = state.turn;
  const answer = await ask(what, more);
  if (!answer) return null;
  const found = await answer.json();
  return mine === state.turn ? found : null;
}

const number = (value, digits) => value.toLocaleString("en", { maximumFractionDigits: digits });

function rowsOf(facts) {
  const rows = [];
  if (facts.coverage) {
    rows.push(["Black covers", `${(facts.coverage[0] * 100).toFixed(2)} %`],
      ["Red covers", `${(facts.coverage[1] * 100).toFixed(2)} %`]);
  }
  rows.push(["Paper", `${number(facts.width, 0)} x ${number(facts.length, 0)} mm`],
    ["Prints in about", `${number(facts.seconds, facts.seconds < 10 ? 1 : 0)} s`],
    ["Sends", `${number(facts.bytes / 1024, 0)} KiB`]);
  return rows;
}

function warningOf(facts) {
  if (facts.blank) return "This page has no ink, so nothing is sent for it.";
  if (!facts.flaws) return "";
  const way = state.settings.DotPlacement === "Exact" ? "" :
    " Printers that take the stream by the letter do that; the placement of the dots can be exact.";
  return `On paper: ${facts.flaws}.${way}`;
}

// `actions` has set(keyword, value), grant(answer) of a wish, unmark() and nameOf(keyword).
export class Findings {
  constructor(actions) {
    this.actions = actions;
    this.timer = 0;
  }

  soon() {
    clearTimeout(this.timer);
    this.timer = setTimeout(() => { void this.facts(); void this.colours(); void this.place(); }, 60);
  }

  async facts() {
    const found = await answerOf("facts", { tab, turn: state.turn });
    if (!found) return;
    byId("facts").replaceChildren(...rowsOf(found).flatMap(([name, value]) => {
      const [dt, dd] = [document.createElement("dt"), document.createElement("dd")];
      dt.textContent = name;
      dd.textContent = value;
      return [dt, dd];
    }));
    byId("flaws").textContent = warningOf(found);
    byId("flaws").hidden = !warningOf(found);
    byId("facts").dataset.turn = state.turn;
  }

  async colours() {
    const found = await answerOf("colours", {});
    if (!found) return;
    showSwatches(byId("swatches"), found.colours, state.turned, (rgb) => {
      this.actions.unmark();
      void this.pick({ rgb: rgb.slice(1) });
    });
    byId("swatches").dataset.turn = state.turn;
  }

  async lines() {
    const found = await answerOf("lines", {});
    if (!found) return;
    byId("lp").textContent = found.lp;
    byId("lpadmin").textContent = found.lpadmin || "(all is as the printer description has it)";
    byId("save").href = `velka.options?${queryOf({})}`;
  }

  // A place of the original or a colour.
  async pick(question) {
    state.picked = { question, told: null };
    await this.place();
  }

  async place() {
    const { picked } = state;
    if (!picked) return;
    const found = await answerOf("place", picked.question);
    if (!found || picked !== state.picked) return;
    const actions = { want: (ink, rgb) => this.want(ink, rgb), set: this.actions.set };
    showPlace(byId("place"), found, actions, this.actions.nameOf);
    if (picked.told) showTurned(picked.told);
    byId("place").dataset.turn = state.turn;
  }

  async want(ink, rgb) {
    const found = await answerOf("wanted", { ink, rgb: rgb.slice(1) });
    if (!found || !state.picked) return;
    state.picked.told = found;
    if (found.why) await this.place();
    else this.actions.grant(found);
  }
}
