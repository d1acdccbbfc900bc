// The printer's options as sliders and choices, as its description has them.

const COLOURS = ["Red", "Green", "Blue"];

function element(name, attributes = {}, ...children) {
  const made = document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) {
    if (key === "class") made.className = value;
    else if (key in made) made[key] = value;
    else made.setAttribute(key, value);
  }
  made.append(...children);
  return made;
}

const isNumber = (choice) => /^-?[0-9.]+$/.test(choice.name);

// Runs of numbers are sliders; a choice or two beside the numbers are kept in front.
function isScale(option) {
  const numbers = option.choices.filter(isNumber);
  return numbers.length >= 5 && option.choices.length - numbers.length <= 1;
}

function inOrder(option) {
  const numbers = option.choices.filter(isNumber).sort((a, b) => a.name - b.name);
  return [...option.choices.filter((choice) => !isNumber(choice)), ...numbers];
}

class Scale {
  constructor(option, changed) {
    this.choices = inOrder(option);
    this.input = element("input", {
      type: "range", min: 0, max: this.choices.length - 1, step: 1, id: option.keyword,
    });
    this.output = element("output");
    this.input.addEventListener("input", () => {
      this.tell();
      changed(this.choices[this.input.value].name, true);
    });
    this.input.addEventListener("change", () => changed(this.choices[this.input.value].name, false));
    this.parts = [
      element("label", { htmlFor: option.keyword }, option.text, this.output), this.input,
    ];
  }

  show(name) {
    this.input.value = this.choices.findIndex((choice) => choice.name === name);
    this.tell();
  }

  tell() {
    this.output.textContent = this.choices[this.input.value]?.text ?? "";
  }
}

class Choice {
  constructor(option, changed) {
    this.input = element("select", { id: option.keyword, disabled: option.choices.length < 2 },
      ...option.choices.map((choice) => element("option", { value: choice.name }, choice.text)));
    this.input.addEventListener("change", () => changed(this.input.value, false));
    this.parts = [element("label", { htmlFor: option.keyword }, option.text), this.input];
  }

  show(name) {
    this.input.value = name;
  }
}

// Calls `change(keyword, name, moving)`; `moving` while a slider is held.
export class Controls {
  constructor(place, groups, change) {
    this.rows = new Map();
    groups.forEach((group, number) => {
      const closed = number > 2;
      place.append(element("details", { open: !closed },
        element("summary", {}, group.text), ...group.options.map((option) => this.row(option, change))));
    });
  }

  row(option, change) {
    const control = new (isScale(option) ? Scale : Choice)(
      option, (name, moving) => change(option.keyword, name, moving));
    const usual = option.choices.find((choice) => choice.name === option.usual);
    const back = element("button", { type: "button", title: "As the printer description has it" }, "back");
    back.addEventListener("click", () => change(option.keyword, option.usual, false));
    const colour = COLOURS.find((name) => option.keyword.startsWith(name)) ?? "";
    const row = element("div", { class: `option ${colour.toLowerCase()}` }, ...control.parts,
      element("div", { class: "usual" }, element("span", {}, `usually ${usual?.text ?? option.usual}`), back));
    this.rows.set(option.keyword, { row, control, usual: option.usual, line: row.lastChild });
    return row;
  }

  show(settings) {
    for (const [keyword, { row, control, usual, line }] of this.rows) {
      const name = settings[keyword] ?? usual;
      control.show(name);
      row.classList.toggle("changed", name !== usual);
      line.hidden = name === usual;
      line.style.display = name === usual ? "none" : "";
    }
  }

  textOf(keyword) {
    return this.rows.get(keyword)?.row.querySelector("label").firstChild.textContent ?? keyword;
  }
}

export { element };
