// The panel on what a player believes: facts of the moment, and plots over time.

import type { Column, Mind } from "./Mind.ts";
import type { Playback } from "./Playback.ts";

const kColours = ["#5ab0ff", "#ffb454", "#6fd68b", "#e98bd0", "#c6b6ff", "#ff8a7a", "#9ad0d6", "#d0c27a"];
const kFacts: { label: string; text: (mind: Mind, row: number) => string }[] = [
  { label: "Believes to be at", text: (mind, row) => place(mind, row, "self") },
  { label: "Facing", text: (mind, row) => number(mind.value("self.heading", row), 0, "°") },
  { label: "Ball at", text: (mind, row) => place(mind, row, "ball") },
  { label: "Landmarks used", text: (mind, row) => number(mind.value("landmarks", row), 0, "") },
  { label: "Situation", text: (mind, row) => mind.text("situation", row) },
  { label: "Role", text: (mind, row) => mind.text("role", row) },
  { label: "Motion", text: (mind, row) => mind.text("motion", row) },
  { label: "Target", text: (mind, row) => place(mind, row, "target") },
  { label: "Claim heard", text: (mind, row) => mind.text("claim", row) },
  { label: "Says", text: (mind, row) => mind.text("said", row) },
  { label: "Hears", text: (mind, row) => mind.text("heard", row) },
];
const kStretch = 500; // rows around the moment that a plot shows
const kMaxGroup = 8;

function number(value: number, digits: number, unit: string): string {
  return Number.isFinite(value) ? `${value.toFixed(digits)}${unit}` : "–";
}

function place(mind: Mind, row: number, name: string): string {
  const [x, y] = [mind.value(`${name}.x`, row), mind.value(`${name}.y`, row)];
  return Number.isFinite(x) && Number.isFinite(y) ? `${x.toFixed(2)}, ${y.toFixed(2)} m` : "–";
}

interface Plot {
  columns: Column[];
  canvas: HTMLCanvasElement;
  value: HTMLElement;
}

export class MindPanel {
  private readonly facts: HTMLElement[] = [];
  private readonly plots: Plot[] = [];
  private readonly list: HTMLElement;
  private shownFrom = 0;

  constructor(
    panel: HTMLElement,
    name: string,
    readonly mind: Mind,
    private readonly seek: (cycle: number) => void,
  ) {
    panel.replaceChildren();
    const title = panel.appendChild(document.createElement("h2"));
    title.textContent = `What ${name} believes`;
    const verdict = panel.appendChild(document.createElement("p"));
    verdict.className = mind.header.same ? "visually-hidden" : "warn";
    verdict.textContent = mind.header.verdict;
    const facts = panel.appendChild(document.createElement("dl"));
    facts.className = "facts";
    for (const { label } of kFacts) {
      facts.appendChild(document.createElement("dt")).textContent = label;
      this.facts.push(facts.appendChild(document.createElement("dd")));
    }
    const pick = panel.appendChild(document.createElement("div"));
    pick.className = "pick";
    pick.append(this.makePicker());
    this.list = panel.appendChild(document.createElement("div"));
    this.list.className = "plots";
    for (const group of ["Self", "Heading", "Ball", "Motion"]) this.addGroup(group);
  }

  // Groups of columns that belong together, and every column alone.
  private makePicker(): HTMLSelectElement {
    const picker = document.createElement("select");
    picker.setAttribute("aria-label", "Plot to add");
    picker.append(new Option("Add a plot …", ""));
    const groups = [...new Set(this.mind.columns.map((column) => column.group))];
    const together = picker.appendChild(document.createElement("optgroup"));
    together.label = "Together";
    for (const group of groups) together.append(new Option(group, `group:${group}`));
    for (const group of groups) {
      const alone = picker.appendChild(document.createElement("optgroup"));
      alone.label = group;
      for (const column of this.mind.columns.filter((other) => other.group === group)) {
        alone.append(new Option(column.label, column.name));
      }
    }
    picker.addEventListener("change", () => {
      const { value } = picker;
      picker.value = "";
      if (value.startsWith("group:")) this.addGroup(value.slice(6));
      else this.add([this.mind.column(value)].filter((column) => column !== undefined));
      this.draw();
    });
    return picker;
  }

  private addGroup(group: string): void {
    const columns = this.mind.columns.filter((column) => column.group === group);
    for (let i = 0; i < columns.length; i += kMaxGroup) this.add(columns.slice(i, i + kMaxGroup));
  }

  private add(columns: Column[]): void {
    if (columns.length === 0) return;
    const figure = this.list.appendChild(document.createElement("figure"));
    const caption = figure.appendChild(document.createElement("figcaption"));
    const names = caption.appendChild(document.createElement("span"));
    columns.forEach((column, i) => {
      const swatch = names.appendChild(document.createElement("i"));
      swatch.className = "swatch";
      swatch.style.background = kColours[i % kColours.length] ?? "";
      names.append(`${column.label}${column.unit ? ` (${column.unit})` : ""}`);
    });
    const value = caption.appendChild(document.createElement("b"));
    const canvas = figure.appendChild(document.createElement("canvas"));
    canvas.setAttribute("role", "img");
    canvas.setAttribute("aria-label", columns.map((column) => column.label).join(", "));
    canvas.title = "Click: to that moment. Double click: without this plot.";
    const plot = { columns, canvas, value };
    canvas.addEventListener("click", (event) => {
      const share = event.offsetX / canvas.clientWidth;
      this.seek(this.mind.header.firstCycle + this.shownFrom + share * kStretch);
    });
    canvas.addEventListener("dblclick", () => {
      figure.remove();
      this.plots.splice(this.plots.indexOf(plot), 1);
    });
    this.plots.push(plot);
  }

  private row = 0;

  show(playback: Playback): void {
    const row = this.mind.row(playback.position);
    kFacts.forEach(({ text }, i) => {
      const fact = this.facts[i];
      const shown = row === undefined ? "–" : text(this.mind, row) || "–";
      if (fact && fact.textContent !== shown) fact.textContent = shown;
    });
    this.row = row ?? 0;
    this.draw();
  }

  private draw(): void {
    const rows = this.mind.header.frames;
    this.shownFrom = Math.min(Math.max(this.row - kStretch / 2, 0), Math.max(rows - kStretch, 0));
    for (const plot of this.plots) this.drawPlot(plot);
  }

  private drawPlot({ columns, canvas, value }: Plot): void {
    const pen = canvas.getContext("2d");
    const { clientWidth: width, clientHeight: height } = canvas;
    if (!pen || width === 0) return;
    const ratio = Math.min(window.devicePixelRatio, 2);
    canvas.width = Math.round(width * ratio);
    canvas.height = Math.round(height * ratio);
    pen.setTransform(ratio, 0, 0, ratio, 0, 0);
    const from = this.shownFrom;
    const to = Math.min(from + kStretch, this.mind.header.frames);
    let low = Infinity;
    let high = -Infinity;
    for (const { values } of columns) {
      for (let r = from; r < to; ++r) {
        const v = values[r] ?? Number.NaN;
        if (v < low) low = v;
        if (v > high) high = v;
      }
    }
    if (!(high > low)) [low, high] = Number.isFinite(low) ? [low - 1, low + 1] : [0, 1];
    const x = (r: number): number => ((r - from) / kStretch) * width;
    const y = (v: number): number => height - 4 - ((v - low) / (high - low)) * (height - 8);
    pen.lineWidth = 1.4;
    columns.forEach(({ values, unit }, i) => {
      pen.strokeStyle = kColours[i % kColours.length] ?? "#fff";
      pen.beginPath();
      let drawing = false;
      for (let r = from; r < to; ++r) {
        const v = values[r] ?? Number.NaN;
        if (!Number.isFinite(v)) {
          drawing = false;
          continue;
        }
        // An angle that passes 180 degrees comes in again at the other end.
        if (unit === "°" && Math.abs(v - (values[r - 1] ?? v)) > 180) drawing = false;
        if (drawing) pen.lineTo(x(r), y(v));
        else pen.moveTo(x(r), y(v));
        drawing = true;
      }
      pen.stroke();
    });
    pen.strokeStyle = getComputedStyle(canvas).color;
    pen.lineWidth = 1;
    pen.beginPath();
    pen.moveTo(x(this.row), 0);
    pen.lineTo(x(this.row), height);
    pen.stroke();
    value.textContent = columns
      .map((column) => column.texts?.[column.values[this.row] ?? -1] ?? number(column.values[this.row] ?? Number.NaN, 2, ""))
      .join("  ");
  }
}
