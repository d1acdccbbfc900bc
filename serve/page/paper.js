// A picture of paper that is drawn piece by piece: what is visible, at the zoom it is seen
// in. Rulers count millimetres.

const RULER = 22;  // pixels of the page
const MM = 25.4;

export class Paper {
  // `source(query)` gives the answer to a question for a piece.
  constructor(canvas, source, moved) {
    this.canvas = canvas;
    this.source = source;
    this.moved = moved;
    this.piece = null;
    this.marks = [];
    this.painted = 0;
    this.pixels = document.createElement("canvas");
    this.listen();
  }

  // Pixels of the screen for one of the page.
  get fine() { return window.devicePixelRatio || 1; }
  get ruler() { return Math.round(RULER * this.fine); }

  frame(look) {
    const at = (mm) => Math.round(mm / MM * look.dpi);
    return {
      x: at(look.x), y: at(look.y),
      w: Math.max(1, this.canvas.width - this.ruler), h: Math.max(1, this.canvas.height - this.ruler),
    };
  }

  resize() {
    const box = this.canvas.getBoundingClientRect();
    this.canvas.width = Math.max(1, Math.round(box.width * this.fine));
    this.canvas.height = Math.max(1, Math.round(box.height * this.fine));
  }

  // Asks for what `look` shows; the promise holds once it is painted, with whether it is.
  async show(look, query) {
    this.look = look;
    this.paint();
    const frame = this.frame(look);
    this.asked?.abort();
    this.asked = new AbortController();
    const asked = this.asked;
    const answer = await this.source({ ...query, ...frame, dpi: look.dpi }, asked.signal);
    if (!answer || asked !== this.asked) return false;
    const numbers = (name) => answer.headers.get(name).split(" ").map(Number);
    const [width, height] = numbers("Velka-Whole");
    const [left, top, w, h] = numbers("Velka-Piece");
    // A newer wish ends an answer on its way, too.
    const body = await answer.arrayBuffer().catch(() => null);
    if (!body || asked !== this.asked) return false;
    const bytes = new Uint8ClampedArray(body);
    this.pixels.width = Math.max(w, 1);
    this.pixels.height = Math.max(h, 1);
    if (w > 0 && h > 0) this.pixels.getContext("2d").putImageData(new ImageData(bytes, w, h), 0, 0);
    this.piece = { left, top, w, h, width, height, dpi: look.dpi };
    this.paint();
    this.painted += 1;
    this.canvas.dataset.painted = this.painted;
    return true;
  }

  // Place of the screen of a place on the picture that is there.
  toScreen(look, piece) {
    const frame = this.frame(look);
    const scale = look.dpi / piece.dpi;
    return { x: (px) => px * scale - frame.x + this.ruler, y: (px) => px * scale - frame.y + this.ruler, scale };
  }

  paint() {
    const context = this.canvas.getContext("2d");
    context.fillStyle = "#c9cdd3";
    context.fillRect(0, 0, this.canvas.width, this.canvas.height);
    if (this.piece) this.paintPiece(context);
    if (this.look) this.paintRulers(context);
  }

  paintPiece(context) {
    const { left, top, w, h, width, height } = this.piece;
    const to = this.toScreen(this.look, this.piece);
    Object.assign(this.canvas.dataset, { left: to.x(0), top: to.y(0), dpi: this.piece.dpi, scale: to.scale });
    context.imageSmoothingEnabled = to.scale < 1;
    context.fillStyle = "#fff";
    context.fillRect(to.x(0), to.y(0), width * to.scale, height * to.scale);
    if (w > 0 && h > 0) {
      context.drawImage(this.pixels, 0, 0, w, h, to.x(left), to.y(top), w * to.scale, h * to.scale);
    }
    context.strokeStyle = "#8c9199";
    context.strokeRect(to.x(0) - 0.5, to.y(0) - 0.5, width * to.scale + 1, height * to.scale + 1);
    for (const mark of this.marks) this.paintMark(context, mark);
  }

  paintMark(context, mark) {
    const frame = this.frame(this.look);
    const x = mark.x / MM * this.look.dpi - frame.x + this.ruler;
    const y = mark.y / MM * this.look.dpi - frame.y + this.ruler;
    context.lineWidth = 2 * this.fine;
    context.strokeStyle = "#e0a800";
    context.beginPath();
    context.arc(x, y, 9 * this.fine, 0, 7);
    context.stroke();
    context.lineWidth = 1;
  }

  paintRulers(context) {
    const { width, height } = this.canvas;
    context.fillStyle = "#f6f7f8";
    context.fillRect(0, 0, width, this.ruler);
    context.fillRect(0, 0, this.ruler, height);
    context.fillStyle = "#33363b";
    context.font = `${10 * this.fine}px system-ui, sans-serif`;
    this.paintRuler(context, this.look.x, width, false);
    this.paintRuler(context, this.look.y, height, true);
    context.fillStyle = "#f6f7f8";
    context.fillRect(0, 0, this.ruler, this.ruler);
    context.fillStyle = "#33363b";
    context.fillText("mm", 3 * this.fine, this.ruler - 7 * this.fine);
  }

  paintRuler(context, start, length, down) {
    const perMm = this.look.dpi / MM;
    const numbered = [1, 5, 10, 20, 50, 100, 200].find((mm) => mm * perMm > 38 * this.fine) ?? 500;
    const step = numbered >= 10 ? numbered / 10 : numbered / 5;
    const first = Math.ceil(start / step);
    for (let i = first; ; ++i) {
      const mm = i * step;
      const at = Math.round((mm - start) * perMm) + this.ruler;
      if (at > length) break;
      const whole = Math.abs(mm / numbered - Math.round(mm / numbered)) < 1e-6;
      const long = (whole ? 9 : 4) * this.fine;
      if (down) context.fillRect(this.ruler - long, at, long, 1);
      else context.fillRect(at, this.ruler - long, 1, long);
      if (whole) this.paintNumber(context, Math.round(mm * 10) / 10, at, down);
    }
  }

  paintNumber(context, mm, at, down) {
    context.save();
    context.translate(down ? 9 * this.fine : at + 3 * this.fine, down ? at - 3 * this.fine : 10 * this.fine);
    if (down) context.rotate(-Math.PI / 2);
    context.fillText(`${mm}`, 0, 0);
    context.restore();
  }

  // Millimetres of the paper below a place of the page.
  placeOf(event) {
    const box = this.canvas.getBoundingClientRect();
    const at = (css, start) => ((css * this.fine - this.ruler) / this.look.dpi) * MM + start;
    return { x: at(event.clientX - box.left, this.look.x), y: at(event.clientY - box.top, this.look.y) };
  }

  listen() {
    this.canvas.addEventListener("wheel", (event) => this.wheel(event), { passive: false });
    this.canvas.addEventListener("pointerdown", (event) => this.drag(event));
  }

  wheel(event) {
    event.preventDefault();
    if (!this.look) return;
    if (event.ctrlKey || !event.shiftKey) {
      this.moved({ zoom: event.deltaY < 0 ? 1 : -1, about: this.placeOf(event) });
    } else {
      this.moved({ x: this.look.x + event.deltaY / this.look.dpi * MM, y: this.look.y });
    }
  }

  // A click is a drag that goes nowhere.
  drag(down) {
    if (!this.look || down.button !== 0) return;
    const from = { x: this.look.x, y: this.look.y };
    let far = false;
    this.canvas.setPointerCapture(down.pointerId);
    const move = (event) => {
      const [dx, dy] = [event.clientX - down.clientX, event.clientY - down.clientY];
      far = far || Math.hypot(dx, dy) > 4;
      if (!far) return;
      this.canvas.classList.add("dragged");
      const mm = (css) => css * this.fine / this.look.dpi * MM;
      this.moved({ x: from.x - mm(dx), y: from.y - mm(dy) });
    };
    const up = (event) => {
      this.canvas.removeEventListener("pointermove", move);
      this.canvas.removeEventListener("pointerup", up);
      this.canvas.classList.remove("dragged");
      if (!far) this.moved({ click: this.placeOf(event) });
    };
    this.canvas.addEventListener("pointermove", move);
    this.canvas.addEventListener("pointerup", up);
  }
}
