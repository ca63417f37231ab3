// The page of `prsm serve`: the design's blocks by region, a form per block built from its sheet's
// input metadata, and the estimate refreshed after every edit. Each edit re-renders only what it
// changed: an input edit updates figures in place; only a change of the block list rebuilds the list.
// Tables, charts and the supply view are in tables.js, charts.js and supplies.js.
"use strict";

const state = { design: null, report: null, sheets: [], inputs: new Map(), rows: new Map(), open: new Set(),
  keys: {}, reasons: null };
const $ = (id) => document.getElementById(id);
const watts = (w) => (w === null || w === undefined ? "-" : Number(w).toFixed(4) + " W");

function status(text, isError = false) {
  $("status").textContent = text;
  $("status").className = isError ? "error" : "";
}

// `timing`, when given, receives the moments the answer arrived and was read.
async function api(path, body, timing = {}) {
  const response = await fetch("api/" + path, body === undefined ? {} : {
    method: "POST", headers: { "Content-Type": "application/json" }, body: JSON.stringify(body) });
  const text = await response.text();
  timing.answered = performance.now();
  const data = JSON.parse(text);
  timing.read = performance.now();
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
    const details = element("details", { class: "region", open: "" }, element("summary", {}, `${region} (${blocks.length})`));
    for (const block of blocks) details.append(blockRow(block));
    container.append(details);
  }
  $("source").textContent = state.design.source;
  refreshVariables();
}

function blockRow(block) {
  const power = element("span", { class: "power" });
  const formSlot = element("div");
  const row = element("div", { class: "block" },
    element("div", { class: "block-head" },
      element("span", { class: "name", title: block.model, onclick: () => toggleForm(block, formSlot) }, `${block.name} `,
        element("small", {}, block.model)),
      power,
      ...(block.name === "static" ? [] : [
        element("button", { onclick: () => edit("blocks/duplicate", { block: block.name }) }, "Duplicate"),
        element("button", { onclick: () => rename(block.name) }, "Rename"),
        element("button", { onclick: () => confirm(`Remove ${block.name}?`) && edit("blocks/remove", { block: block.name }) }, "Remove"),
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
  const form = element("form", { class: "inputs", onsubmit: (e) => e.preventDefault() });
  for (const cell of sheet.cells) {
    if (cell.design_owned) continue;
    const given = block.inputs[cell.name];
    const title = [cell.description, cell.range ? `expected ${cell.range.low} .. ${cell.range.high}` : "",
      cell.choices ? "" : cell.valid_values].filter(Boolean).join("; ");
    let field;
    if (given !== null && typeof given === "object") {
      field = element("input", { value: `from ${given.from}.${given.cell || cell.name}`, disabled: "" });
    } else if (cell.choices) {
      field = element("select", {}, element("option", { value: "" }, `(default ${cell.default})`),
        ...cell.choices.map((c) => element("option", { value: c }, c)));
      field.value = given === undefined ? "" : String(given);
    } else {
      field = element("input", { placeholder: cell.default, inputmode: cell.type === "string" ? "text" : "decimal" });
      if (given !== undefined) field.value = String(given);
    }
    field.title = title;
    field.dataset.cell = cell.name;
    const reason = element("span", { class: "reason" });
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
    form.append(element("label", { title }, cell.name, " ", element("span", { class: "unit" }, cell.unit ? `(${cell.unit})` : "")),
      field, reason);
  }
  entry.form = form;
  slot.append(form);
  markWarnings(block.name);
}

async function setInput(block, cell, field, reason) {
  if (field.value === "") return;  // an input once given keeps a value; the file holds it
  const started = performance.now(), timing = {};
  try {
    const answer = await api("input", { block, cell, value: field.value }, timing);
    const doc = state.design.document;
    const target = block === "static" ? doc.static : doc.blocks.find((b) => b.name === block);
    target.inputs = target.inputs || {};
    target.inputs[cell] = field.value;
    delete field.dataset.refused;
    showReport(answer.report, false, answer.blocks_changed_only, answer.warnings_unchanged);
    markWarnings(block);  // a value taken clears the field's refusal
    recordEdit(started, timing);
  } catch (e) {
    field.dataset.refused = e.message;  // kept until the field takes a value, whatever else is edited
    field.classList.add("invalid");
    reason.textContent = e.message;
  }
}

// From the keystroke to the new figures on screen, and where the time went (the request to the
// server and back, reading the answer, updating the page, the browser drawing it), for the browser
// test to report.
function recordEdit(started, timing) {
  const updated = performance.now();
  const ms = (t) => (t - started).toFixed(1);
  requestAnimationFrame(() => setTimeout(() => {
    const drawn = performance.now();
    document.body.dataset.lastEditPhases = JSON.stringify({
      answered: +ms(timing.answered), read: +ms(timing.read), updated: +ms(updated), drawn: +ms(drawn) });
    document.body.dataset.lastEditMs = ms(drawn);
  }));
}

// The report's warnings by block and cell, for the forms.
function reasonsOf(block) {
  if (!state.reasons) {
    state.reasons = new Map();
    for (const w of state.report.warnings) {
      if (!w.block || !w.cell) continue;
      if (!state.reasons.has(w.block)) state.reasons.set(w.block, new Map());
      state.reasons.get(w.block).set(w.cell, w.message);
    }
  }
  return state.reasons.get(block) || new Map();
}

// Marks the open form's fields that the report warns about, with the reason.
function markWarnings(block) {
  const entry = state.rows.get(block);
  if (!entry || !entry.form) return;
  const reasons = reasonsOf(block);
  for (const field of entry.form.querySelectorAll("[data-cell]")) {
    const message = field.dataset.refused || reasons.get(field.dataset.cell);
    field.classList.toggle("invalid", Boolean(message));
    field.nextElementSibling.textContent = message || "";
  }
}

// ---- the report ------------------------------------------------------------------------------------

// `partial`: the report of an input edit, which holds only the blocks whose figures moved, and no
// warnings when `warningsKept` (they are those shown).
function showReport(report, blocksChanged, partial = false, warningsKept = false) {
  const moved = report.blocks;
  if (partial) {
    const byName = new Map(moved.map((b) => [b.name, b]));
    report.blocks = state.report.blocks.map((b) => byName.get(b.name) || b);
  }
  if (warningsKept) report.warnings = state.report.warnings;
  else state.reasons = null;  // worked out again when a form needs them
  state.report = report;
  if (blocksChanged) renderBlocks();
  for (const b of blocksChanged ? report.blocks : moved) {
    const entry = state.rows.get(b.name);
    if (!entry) continue;
    const text = b.error ? "FAILED" : watts(b.power);
    if (entry.power.textContent !== text) entry.power.textContent = text;
    entry.power.title = b.error || "";
    entry.row.classList.toggle("failed", Boolean(b.error));
  }
  if (!warningsKept) for (const name of state.open) markWarnings(name);

  const t = report.totals;
  if (!$("totals").childElementCount) {
    $("totals").append(...["Total", "Dynamic", "Static"].map((name) => element("span", {}, name + " ", element("b"))));
  }
  [t.total_power, t.dynamic_power, t.static_power].forEach((w, i) => {
    const figure = $("totals").children[i].lastChild;
    if (figure.textContent !== watts(w)) figure.textContent = watts(w);
  });
  const th = report.thermal;
  const thermal = `Junction ${th.junction_temperature.toFixed(2)} °C` +
    (th.solved ? ` (ambient ${th.ambient_temperature} °C, θja ${th.theta_ja} °C/W${th.runaway ? ", thermal runaway" : ""})` : " (given)");
  if ($("thermal").textContent !== thermal) $("thermal").textContent = thermal;
  // A large design may carry a thousand warnings that an edit seldom changes.
  const keys = { failures: JSON.stringify(report.failures), warnings: warningsKept ? state.keys.warnings : JSON.stringify(report.warnings) };
  if (keys.failures !== state.keys.failures || keys.warnings !== state.keys.warnings) renderWarnings(report, keys);
  table($("rails"), ["rail", "V", "dynamic A", "static A", "total A", "W"],
    report.rails.map((r) => [r.rail, r.voltage.toFixed(3), r.dynamic_current.toFixed(4), r.static_current.toFixed(4),
      r.total_current.toFixed(4) + (r.over_limit ? " OVER" : ""), r.power.toFixed(4)]),
    report.rails.map((r) => (r.over_limit ? "over" : "")));
  renderSupplies($("supplies"), report);
  table($("region-table"), ["region", "dynamic W", "static W", "total W"],
    report.regions.map((r) => [r.region, r.dynamic_power.toFixed(4), r.static_power.toFixed(4),
      (r.dynamic_power + r.static_power).toFixed(4)]));
  bars($("chart-regions"), report.regions.map((r) => [r.region, r.dynamic_power + r.static_power]));
  bars($("chart-rails"), report.rails.map((r) => [r.rail, r.power]));
  scheduleCurve();
}

function renderWarnings(report, keys) {
  state.keys = keys;
  $("warnings").replaceChildren(
    ...report.failures.map((f) => element("li", {}, "error: " + f)),
    ...report.warnings.map((w) => element("li", {}, (w.block ? `${w.block}: ` : "") + (w.cell ? `${w.cell}: ` : "") + w.message)));
}

// ---- static power against the junction temperature ------------------------------------------------

// The curve costs a whole estimate of the design (the blocks once, the static sheet at eleven
// temperatures): it is fetched once the edits pause, so typing never waits behind it.
const CURVE_PAUSE_MS = 400;

function scheduleCurve() {
  clearTimeout(state.curveTimer);
  state.curveTimer = setTimeout(refreshCurve, CURVE_PAUSE_MS);
}

async function refreshCurve() {
  try {
    const curve = await api("static-curve");
    const figure = curve.points.length
      ? lineChart("Static power (W) against junction temperature (°C)", curve.points,
        curve.static_power === null ? null : [curve.junction_temperature, curve.static_power])
      : element("p", {}, "No curve: the design names no static sheet, or its estimate is not complete.");
    figure.id = "chart-static";
    $("chart-static").replaceWith(figure);
  } catch (e) {
    status(e.message, true);
  }
}

// ---- sweeps ----------------------------------------------------------------------------------------

function refreshVariables() {
  const names = ["junction_temperature", "ambient_temperature", "theta_ja",
    ...state.report.rails.map((r) => "rail." + r.rail)];
  $("sweep-variables").replaceChildren(...names.map((n) => element("option", { value: n })));
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

// ---- files -----------------------------------------------------------------------------------------

async function refreshFiles() {
  const files = await api("files");
  $("open-file").replaceChildren(...files.map((f) => element("option", { value: f }, f)));
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
  $("add-model").replaceChildren(...sheets.map((s) => element("option", { value: s.name, title: s.description }, `${s.name} (${s.region})`)));
  $("save-file").value = design.source.endsWith(".json") ? design.source : "design.json";
  showReport(report, true);
  // From the navigation to the first figures drawn, for the browser test to report.
  requestAnimationFrame(() => setTimeout(() => { document.body.dataset.loadedMs = performance.now().toFixed(0); }));
  $("add").addEventListener("click", () => edit("blocks/add", { model: $("add-model").value, name: $("add-name").value || null }));
  $("sweep").addEventListener("click", runSweep);
  $("open").addEventListener("click", openFile);
  $("save").addEventListener("click", saveFile);
  refreshFiles();
  for (const name of await api("downloads")) $("downloads").append(" ", element("a", { href: "api/" + name, download: "" }, name));
}

start().catch((e) => status(e.message, true));
