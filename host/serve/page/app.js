// The page of `prsm serve`: the design's blocks by region, a form per block built from its sheet's
// input metadata, and the estimate refreshed after every edit. Each edit re-renders only what it
// changed: an input edit updates figures in place; only a change of the block list rebuilds the list.
"use strict";

const state = { design: null, report: null, sheets: [], inputs: new Map(), rows: new Map(), open: new Set() };
const $ = (id) => document.getElementById(id);
const watts = (w) => (w === null || w === undefined ? "-" : Number(w).toFixed(4) + " W");

function el(tag, attrs = {}, ...children) {
  const node = document.createElement(tag);
  for (const [k, v] of Object.entries(attrs)) {
    if (k.startsWith("on")) node.addEventListener(k.slice(2), v);
    else node.setAttribute(k, v);
  }
  for (const c of children) node.append(c);
  return node;
}

function status(text, isError = false) {
  $("status").textContent = text;
  $("status").className = isError ? "error" : "";
}

async function api(path, body) {
  const response = await fetch("api/" + path, body === undefined ? {} : {
    method: "POST", headers: { "Content-Type": "application/json" }, body: JSON.stringify(body) });
  const data = await response.json();
  if (!response.ok) throw new Error(data.error || response.statusText);
  return data;
}

// ---- blocks ----------------------------------------------------------------------------------------

function blocksOf(document) {
  const blocks = (document.blocks || []).map((b) => ({ name: b.name, model: b.model, inputs: b.inputs || {} }));
  if (document.static) blocks.push({ name: "static", model: document.static.model, inputs: document.static.inputs || {} });
  return blocks;
}

function renderBlocks() {
  const regions = new Map(state.report.blocks.map((b) => [b.name, b.region]));
  regions.set("static", "static");
  const groups = new Map();
  for (const block of blocksOf(state.design.document)) {
    const region = regions.get(block.name) || "other";
    if (!groups.has(region)) groups.set(region, []);
    groups.get(region).push(block);
  }
  state.rows.clear();
  const container = $("regions");
  container.replaceChildren();
  for (const [region, blocks] of [...groups].sort()) {
    const details = el("details", { class: "region", open: "" }, el("summary", {}, `${region} (${blocks.length})`));
    for (const block of blocks) details.append(blockRow(block));
    container.append(details);
  }
  $("source").textContent = state.design.source;
  refreshVariables();
}

function blockRow(block) {
  const power = el("span", { class: "power" });
  const formSlot = el("div");
  const row = el("div", { class: "block" },
    el("div", { class: "block-head" },
      el("span", { class: "name", title: block.model, onclick: () => toggleForm(block, formSlot) }, `${block.name} `,
        el("small", {}, block.model)),
      power,
      ...(block.name === "static" ? [] : [
        el("button", { onclick: () => edit("blocks/duplicate", { block: block.name }) }, "Duplicate"),
        el("button", { onclick: () => rename(block.name) }, "Rename"),
        el("button", { onclick: () => confirm(`Remove ${block.name}?`) && edit("blocks/remove", { block: block.name }) }, "Remove"),
      ])),
    formSlot);
  state.rows.set(block.name, { row, power, form: null });
  if (state.open.has(block.name)) toggleForm(block, formSlot);
  return row;
}

async function rename(name) {
  const next = prompt("New name", name);
  if (next && next !== name) {
    await edit("blocks/rename", { block: name, name: next });
  }
}

async function edit(path, body) {
  try {
    const data = await api(path, body);
    if (path === "blocks/rename") state.open.delete(body.block);
    state.design = data.design;
    showReport(data.report, true);
    status("");
  } catch (e) {
    status(e.message, true);
  }
}

async function sheetInputs(model) {
  if (!state.inputs.has(model)) state.inputs.set(model, await api("sheets/" + encodeURIComponent(model)));
  return state.inputs.get(model);
}

async function toggleForm(block, slot) {
  const entry = state.rows.get(block.name);
  if (entry.form) {
    entry.form.remove();
    entry.form = null;
    state.open.delete(block.name);
    return;
  }
  state.open.add(block.name);
  const sheet = await sheetInputs(block.model);
  const form = el("form", { class: "inputs", onsubmit: (e) => e.preventDefault() });
  for (const cell of sheet.cells) {
    if (cell.design_owned) continue;
    const given = block.inputs[cell.name];
    const title = [cell.description, cell.range ? `expected ${cell.range.low} .. ${cell.range.high}` : "",
      cell.choices ? "" : cell.valid_values].filter(Boolean).join("; ");
    let field;
    if (given !== null && typeof given === "object") {
      field = el("input", { value: `from ${given.from}.${given.cell || cell.name}`, disabled: "" });
    } else if (cell.choices) {
      field = el("select", {}, el("option", { value: "" }, `(default ${cell.default})`),
        ...cell.choices.map((c) => el("option", { value: c }, c)));
      field.value = given === undefined ? "" : String(given);
    } else {
      field = el("input", { placeholder: cell.default, inputmode: cell.type === "string" ? "text" : "decimal" });
      if (given !== undefined) field.value = String(given);
    }
    field.title = title;
    field.dataset.cell = cell.name;
    const reason = el("span", { class: "reason" });
    // Sent as typed; while an answer is awaited, the keystrokes after it coalesce into one more request.
    let busy = false, again = false;
    const send = async () => {
      if (busy) { again = true; return; }
      busy = true;
      await setInput(block.name, cell.name, field, reason);
      busy = false;
      if (again) { again = false; send(); }
    };
    field.addEventListener("input", send);
    form.append(el("label", { title }, cell.name, " ", el("span", { class: "unit" }, cell.unit ? `(${cell.unit})` : "")),
      field, reason);
  }
  entry.form = form;
  slot.append(form);
  markWarnings(block.name);
}

async function setInput(block, cell, field, reason) {
  if (field.value === "") return;  // an input once given keeps a value; the file holds it
  const started = performance.now();
  try {
    const answer = await api("input", { block, cell, value: field.value });
    const doc = state.design.document;
    const target = block === "static" ? doc.static : doc.blocks.find((b) => b.name === block);
    target.inputs = target.inputs || {};
    target.inputs[cell] = field.value;
    delete field.dataset.refused;
    showReport(answer.report, false, answer.blocks_changed_only);
    // From the keystroke to the new figures on screen, for the browser test to report.
    document.body.dataset.lastEditMs = (performance.now() - started).toFixed(1);
  } catch (e) {
    field.dataset.refused = e.message;  // kept until the field takes a value, whatever else is edited
    field.classList.add("invalid");
    reason.textContent = e.message;
  }
}

// Marks the open form's fields that the report warns about, with the reason.
function markWarnings(block) {
  const entry = state.rows.get(block);
  if (!entry || !entry.form) return;
  const reasons = new Map();
  for (const w of state.report.warnings) if (w.block === block && w.cell) reasons.set(w.cell, w.message);
  for (const field of entry.form.querySelectorAll("[data-cell]")) {
    const message = field.dataset.refused || reasons.get(field.dataset.cell);
    field.classList.toggle("invalid", Boolean(message));
    field.nextElementSibling.textContent = message || "";
  }
}

// ---- the report ------------------------------------------------------------------------------------

// `partial`: the report of an input edit, which holds only the blocks whose figures moved.
function showReport(report, blocksChanged, partial = false) {
  const moved = report.blocks;
  if (partial) {
    const byName = new Map(moved.map((b) => [b.name, b]));
    report.blocks = state.report.blocks.map((b) => byName.get(b.name) || b);
  }
  state.report = report;
  if (blocksChanged) renderBlocks();
  for (const b of blocksChanged ? report.blocks : moved) {
    const entry = state.rows.get(b.name);
    if (!entry) continue;
    entry.power.textContent = b.error ? "FAILED" : watts(b.power);
    entry.power.title = b.error || "";
    entry.row.classList.toggle("failed", Boolean(b.error));
  }
  for (const name of state.open) markWarnings(name);

  const t = report.totals;
  $("totals").replaceChildren(
    el("span", {}, "Total ", el("b", {}, watts(t.total_power))),
    el("span", {}, "Dynamic ", el("b", {}, watts(t.dynamic_power))),
    el("span", {}, "Static ", el("b", {}, watts(t.static_power))));
  const th = report.thermal;
  $("thermal").textContent = `Junction ${th.junction_temperature.toFixed(2)} °C` +
    (th.solved ? ` (ambient ${th.ambient_temperature} °C, θja ${th.theta_ja} °C/W${th.runaway ? ", thermal runaway" : ""})` : " (given)");
  // A large design may carry a thousand warnings that an edit seldom changes.
  const warningKey = JSON.stringify([report.failures, report.warnings]);
  if (warningKey !== state.warningKey) renderWarnings(report, warningKey);
  table($("rails"), ["rail", "V", "dynamic A", "static A", "total A", "W"],
    report.rails.map((r) => [r.rail, r.voltage.toFixed(3), r.dynamic_current.toFixed(4), r.static_current.toFixed(4),
      r.total_current.toFixed(4) + (r.over_limit ? " OVER" : ""), r.power.toFixed(4)]));
  table($("region-table"), ["region", "dynamic W", "static W", "total W"],
    report.regions.map((r) => [r.region, r.dynamic_power.toFixed(4), r.static_power.toFixed(4),
      (r.dynamic_power + r.static_power).toFixed(4)]));
  bars($("chart-regions"), report.regions.map((r) => [r.region, r.dynamic_power + r.static_power]));
  bars($("chart-rails"), report.rails.map((r) => [r.rail, r.power]));
}

function renderWarnings(report, key) {
  state.warningKey = key;
  $("warnings").replaceChildren(
    ...report.failures.map((f) => el("li", {}, "error: " + f)),
    ...report.warnings.map((w) => el("li", {}, (w.block ? `${w.block}: ` : "") + (w.cell ? `${w.cell}: ` : "") + w.message)));
}

function table(node, head, rows) {
  node.replaceChildren(el("tr", {}, ...head.map((h) => el("th", {}, h))),
    ...rows.map((r) => el("tr", {}, ...r.map((c) => el("td", {}, c)))));
}

const SVG = "http://www.w3.org/2000/svg";
function svg(tag, attrs, text) {
  const node = document.createElementNS(SVG, tag);
  for (const [k, v] of Object.entries(attrs)) node.setAttribute(k, v);
  if (text !== undefined) node.textContent = text;
  return node;
}

// Horizontal bars, one per name, scaled to the largest.
function bars(node, items) {
  const width = 350, row = 16, left = 90;
  node.setAttribute("viewBox", `0 0 ${width} ${Math.max(1, items.length) * row + 4}`);
  node.style.height = `${(items.length * row + 4) / 16}rem`;
  const top = Math.max(...items.map(([, v]) => v), 1e-12);
  node.replaceChildren(...items.flatMap(([name, value], i) => [
    svg("text", { x: left - 4, y: i * row + 12, "text-anchor": "end" }, name),
    svg("rect", { x: left, y: i * row + 2, height: row - 4, width: Math.max(0, (value / top) * (width - left - 60)), fill: "#3b6fb6" }),
    svg("text", { x: left + Math.max(0, (value / top) * (width - left - 60)) + 3, y: i * row + 12 }, value.toFixed(3)),
  ]));
}

// ---- sweeps ----------------------------------------------------------------------------------------

function refreshVariables() {
  const names = ["junction_temperature", "ambient_temperature", "theta_ja",
    ...state.report.rails.map((r) => "rail." + r.rail)];
  $("sweep-variables").replaceChildren(...names.map((n) => el("option", { value: n })));
}

async function runSweep() {
  try {
    status("sweeping ...");
    const result = await api("sweep", { variable: $("sweep-variable").value, values: $("sweep-values").value,
      outputs: $("sweep-outputs").value || null });
    const x = result.variables[0];
    // One picture per output: each has its own unit on its own axis.
    $("sweep-charts").replaceChildren(...result.outputs.map((o) =>
      lineChart(`${o.name}${o.unit ? " (" + o.unit + ")" : ""} against ${x.name}${x.unit ? " (" + x.unit + ")" : ""}`,
        result.rows.map((r) => [r[x.name], r[o.name]]))));
    status("");
  } catch (e) {
    status(e.message, true);
  }
}

function lineChart(title, points) {
  const w = 350, h = 170, l = 55, b = 20, t = 8;
  const xs = points.map((p) => Number(p[0])), ys = points.filter((p) => p[1] !== null).map((p) => p[1]);
  const numericX = xs.every((v) => Number.isFinite(v));
  const x0 = numericX ? Math.min(...xs) : 0, x1 = numericX ? Math.max(...xs) : points.length - 1;
  const y0 = Math.min(...ys), y1 = Math.max(...ys);
  const sx = (v, i) => l + ((numericX ? v : i) - x0) / (x1 - x0 || 1) * (w - l - 10);
  const sy = (v) => h - b - (v - y0) / (y1 - y0 || 1) * (h - b - t);
  const path = points.map((p, i) => (p[1] === null ? null : `${sx(Number(p[0]), i)},${sy(p[1])}`)).filter(Boolean).join(" ");
  const chart = svg("svg", { viewBox: `0 0 ${w} ${h}`, role: "img" });
  chart.append(
    svg("line", { x1: l, y1: h - b, x2: w - 10, y2: h - b, stroke: "#889" }),
    svg("line", { x1: l, y1: t, x2: l, y2: h - b, stroke: "#889" }),
    svg("text", { x: l - 4, y: t + 8, "text-anchor": "end" }, y1.toPrecision(4)),
    svg("text", { x: l - 4, y: h - b, "text-anchor": "end" }, y0.toPrecision(4)),
    svg("text", { x: l, y: h - 4 }, String(points[0][0])),
    svg("text", { x: w - 10, y: h - 4, "text-anchor": "end" }, String(points[points.length - 1][0])),
    svg("polyline", { points: path, fill: "none", stroke: "#c0392b", "stroke-width": 1.5 }));
  return el("figure", {}, el("figcaption", {}, title), chart);
}

// ---- files -----------------------------------------------------------------------------------------

async function refreshFiles() {
  const files = await api("files");
  $("open-file").replaceChildren(...files.map((f) => el("option", { value: f }, f)));
}

async function openFile() {
  state.open.clear();
  await edit("open", { file: $("open-file").value });
  $("save-file").value = state.design.source;
}

async function saveFile() {
  try {
    const saved = await api("save", { file: $("save-file").value });
    status(`saved ${saved.saved} (${saved.bytes} bytes)`);
    refreshFiles();
  } catch (e) {
    status(e.message, true);
  }
}

async function start() {
  const [design, report, sheets] = await Promise.all([api("design"), api("report"), api("sheets")]);
  state.design = design;
  state.sheets = sheets;
  $("add-model").replaceChildren(...sheets.map((s) => el("option", { value: s.name, title: s.description }, `${s.name} (${s.region})`)));
  $("save-file").value = design.source.endsWith(".json") ? design.source : "design.json";
  showReport(report, true);
  $("add").addEventListener("click", () => edit("blocks/add", { model: $("add-model").value, name: $("add-name").value || null }));
  $("sweep").addEventListener("click", runSweep);
  $("open").addEventListener("click", openFile);
  $("save").addEventListener("click", saveFile);
  refreshFiles();
  for (const name of await api("downloads")) $("downloads").append(" ", el("a", { href: "api/" + name, download: "" }, name));
}

start().catch((e) => status(e.message, true));
