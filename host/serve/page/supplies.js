// The supply view: what each rail must deliver while the device powers up and whose static current
// another rail already holds, the design's regulators loaded with their rails, the board's regulators,
// the regulator groups of the power-delivery scheme and the decoupling capacitors per rail. Each table
// shows when the report has its part and goes when it has not; a report without supplies is no error.
"use strict";

const amps = (a) => fixed(a, 4);

// Rails that draw at power-up or take part in held leakage, a held rail right under the rail holding it.
function railSupplyRows(rails) {
  const held = new Map();
  for (const r of rails) if (r.counted_in) held.set(r.counted_in, [...(held.get(r.counted_in) || []), r]);
  const names = new Set(rails.map((r) => r.rail));
  const rows = [], classes = [];
  for (const r of rails) {
    if (r.counted_in && names.has(r.counted_in)) continue;  // listed under its holder
    const under = held.get(r.rail) || [];
    if (!(r.powerup_current > 0) && !under.length && !r.counted_in) continue;
    rows.push([r.rail, amps(r.powerup_current), r.counted_in ? `static current held in ${r.counted_in}` : ""]);
    classes.push("");
    for (const h of under) {
      rows.push([h.rail, amps(h.powerup_current), `static current held in ${r.rail}`]);
      classes.push("held");
    }
  }
  return { rows, classes };
}

// A declared regulator over its rating, at run or at power-up, is marked as a rail over its limit is.
function regulatorRows(regulators) {
  const rows = [], classes = [];
  for (const r of regulators) {
    const overAtStart = r.powerup_current !== null && r.powerup_current > r.rating;
    rows.push([r.name, r.rails.join(" "), amps(r.load) + (r.over_rating ? " OVER" : ""), amps(r.rating),
      amps(r.margin), amps(r.powerup_current) + (overAtStart ? " OVER" : ""), fixed(r.efficiency, 3),
      fixed(r.input_power, 4), fixed(r.loss, 4)]);
    classes.push(r.over_rating || overAtStart ? "over" : "");
  }
  return { rows, classes };
}

function boardRegulatorRows(regulators) {
  const over = (r) => r.over_limit_mw !== null && r.over_limit_mw > 0;
  return {
    rows: regulators.map((r) => [r.name, amps(r.load) + (over(r) ? " OVER" : ""), fixed(r.efficiency, 3),
      fixed(r.loss, 4), fixed(r.over_limit_mw, 1)]),
    classes: regulators.map((r) => (over(r) ? "over" : "")),
  };
}

// A figure as the report gives it: a number to four decimals at most, text as it is, a list or an
// object as its members (the shapes a newer report may add are shown rather than refused).
function shown(value) {
  if (value === null || value === undefined) return "-";
  if (typeof value === "number") return String(Number(value.toFixed(4)));
  if (Array.isArray(value)) return value.map(shown).join(", ");
  if (typeof value === "object") return Object.entries(value).map(([k, v]) => `${k} ${shown(v)}`).join(", ");
  return String(value);
}

// Each group, then its rails under it with the rails whose static current each holds.
function groupRows(groups) {
  const rows = [], classes = [];
  for (const g of groups) {
    rows.push([g.name, g.label, shown(g.sequence), shown(g.dc_tolerance), shown(g.ac_ripple), fixed(g.voltage, 3),
      amps(g.current), fixed(g.power, 4), amps(g.powerup_current)]);
    classes.push("group");
    const railRow = (r) => {
      rows.push([r.rail + (r.held && r.held.length ? ` (holds ${r.held.map((h) => h.rail).join(", ")})` : ""), "", "", "", "",
        fixed(r.voltage, 3), amps(r.current), fixed(r.power, 4), amps(r.powerup_current)]);
      classes.push("held");
      (r.held || []).forEach(railRow);  // a held rail right under the rail holding its static current
    };
    (g.rails || []).forEach(railRow);
  }
  return { rows, classes };
}

// Per rail, per capacitor value, the whole capacitors to fit and, in brackets, the sheet's own count.
function decouplingRows(decoupling) {
  const rows = [];
  for (const r of decoupling.rails || [])
    for (const c of r.capacitors) rows.push([r.rail, c.value, `${shown(c.whole_count)} (${shown(c.count)})`]);
  return { rows, classes: [] };
}

// The supply view of `report`, its tables patched in place under `container`.
function renderSupplies(container, report) {
  const supplies = report.supplies || {};
  const board = report.board && report.board.regulators && report.board.regulators.length ? report.board : null;
  const parts = [
    ["supply-rails", "Power-up currents and held leakage",
      ["rail", "power-up A", "static current"], report.rails ? railSupplyRows(report.rails) : null],
    ["supply-regulators", "Regulators",
      ["regulator", "rails", "load A", "rating A", "margin A", "power-up A", "efficiency", "input W", "loss W"],
      supplies.regulators ? regulatorRows(supplies.regulators) : null],
    ["supply-totals", "Supplies", ["", "W"], supplies.regulators ? {
      rows: [["input power", fixed(supplies.input_power, 4)], ["unregulated rails", fixed(supplies.unregulated_power, 4)]],
      classes: [] } : null],
    ["supply-board", board ? `Regulators of ${board.model} (board total ${fixed(board.total_power, 4)} W)` : "",
      ["regulator", "load A", "efficiency", "loss W", "over mW"], board ? boardRegulatorRows(board.regulators) : null],
    ["supply-groups", "Regulator groups",
      ["group", "label", "sequence", "DC tolerance", "AC ripple", "V", "A", "W", "power-up A"],
      supplies.groups ? groupRows(supplies.groups) : null],
    ["supply-decoupling", "Decoupling capacitors", ["rail", "capacitor", "whole (sheet count)"],
      report.decoupling ? decouplingRows(report.decoupling) : null],
  ];
  for (const [id, caption, head, content] of parts) {
    let node = container.querySelector(`#${id}`);
    if (!content || !content.rows.length) {
      if (node) node.remove();
      continue;
    }
    if (!node) {
      node = element("table", { id }, element("caption"));
      // Kept in the order of `parts` whatever shows first.
      const after = parts.slice(parts.findIndex((p) => p[0] === id) + 1)
        .map((p) => container.querySelector(`#${p[0]}`)).find(Boolean);
      container.insertBefore(node, after || null);
    }
    if (node.caption.textContent !== caption) node.caption.textContent = caption;
    table(node, head, content.rows, content.classes);
  }
}
