// What all of the page know: the settings, and whom to ask.

export const byId = (id) => document.getElementById(id);
export const MM = 25.4;  // an inch

// Names this tab, so that a newer wish of it ends an older one.
export const tab = [...crypto.getRandomValues(new Uint8Array(8))].map((b) => b.toString(16).padStart(2, "0")).join("");

export const state = {
  settings: {},        // those that are not as usual
  page: 1,
  turn: 0,             // counts settings and pages
  turned: new Set(),   // colours that have just changed their ink
  picked: null,        // the place or the colour that was clicked
};

export function queryOf(more) {
  const query = new URLSearchParams();
  for (const [keyword, name] of Object.entries(state.settings)) query.set(`o.${keyword}`, name);
  query.set("page", state.page);
  for (const [key, value] of Object.entries(more)) query.set(key, value);
  return query;
}

// An answer, or null where it is outdated or there is none.
export async function ask(what, query, signal) {
  try {
    const answer = await fetch(`${what}?${queryOf(query)}`, { signal });
    if (answer.ok) return answer;
    if (answer.status !== 409) say((await answer.text()).trim());
  } catch (error) {
    if (error.name !== "AbortError") say("velkaview does not answer any more: it has ended.");
  }
  return null;
}

export function say(text) {
  byId("message").textContent = text;
  byId("message").hidden = !text;
}
