// The console page: renders the status and events chanweb pushes on
// /api/events (Server-Sent Events) and sends the buttons to /api/press.
"use strict";

const ROWS = ["H.264", "HEVC"];
const FIELDS = ["Status", "Fcode", "Source", "Input", "Resolution", "Total Bit Rate", "Set Bitrate", "Max Bitrate",
                "Target 1", "Target 2"];
const COLOURS = { "H.264": "#2563eb", "HEVC": "#db2777" };
let lastStatus = null;

function element(tag, attributes, text) {
  const node = document.createElement(tag);
  Object.entries(attributes || {}).forEach(([name, value]) => node.setAttribute(name, value));
  if (text !== undefined) node.textContent = text;
  return node;
}

function renderChannel(card, channel) {
  card.replaceChildren();
  const title = element("h2", {}, channel ? channel.title : card.dataset.row);
  const state = channel ? channel.State : "—";
  title.append(element("span", { class: "state " + state }, state));
  card.append(title);
  const table = element("table");
  for (const field of FIELDS) {
    if (!channel || channel[field] === undefined) continue;
    let text = channel[field];
    if (field === "Fcode" && channel.condition) {
      const names = channel.condition.names;
      text = "0x" + channel.condition.fcode.toString(16) + " — " + (names.length ? names.join(", ") : "no condition");
    }
    const row = element("tr");
    row.append(element("th", {}, field === "Fcode" ? "Conditions" : field));
    const cell = element("td", {}, text);
    if ((field === "Status" && text === "ERROR") || (field === "Fcode" && channel.condition &&
        channel.condition.names.length)) cell.className = "error";
    row.append(cell);
    table.append(row);
  }
  card.append(table);
  const buttons = element("div", { class: "buttons" });
  buttons.append(element("button", { class: "play", "data-action": "play", "data-row": card.dataset.row }, "Play"));
  buttons.append(element("button", { class: "stop", "data-action": "stop", "data-row": card.dataset.row }, "Stop"));
  card.append(buttons);
}

function renderStatus(status) {
  lastStatus = status;
  const notice = document.getElementById("notice");
  if (status.loaded === false) {
    notice.textContent = "No channel data loaded. Press LOAD_CHANNELS \"Default\" to load the factory data.";
  } else if (status.fcode === 0x10040) {
    notice.textContent = "The channel manager does not answer on " + status.socket + "; is it running?";
  } else {
    notice.textContent = "";
  }
  notice.hidden = notice.textContent === "";
  for (const card of document.querySelectorAll(".channel")) {
    renderChannel(card, (status.channels || []).find((c) => c.row === card.dataset.row));
  }
  drawChart(status.chart || { t: [] });
}

function drawChart(chart) {
  const canvas = document.getElementById("chart");
  const scale = window.devicePixelRatio || 1;
  canvas.width = canvas.clientWidth * scale;
  canvas.height = canvas.clientHeight * scale;
  const g = canvas.getContext("2d");
  g.scale(scale, scale);
  const width = canvas.clientWidth, height = canvas.clientHeight, left = 70, bottom = 20, above = 16;
  g.clearRect(0, 0, width, height);
  const now = Date.now(), span = 300000;
  let top = 0;
  ROWS.forEach((row) => (chart[row] || []).forEach((v) => { if (v !== null) top = Math.max(top, v); }));
  top = top > 0 ? top * 1.2 : 1;
  g.strokeStyle = "#d1d5db";
  g.fillStyle = "#6b7280";
  g.font = "11px sans-serif";
  for (let i = 0; i <= 4; ++i) {
    const y = above + (height - bottom - above) * (1 - i / 4);
    g.beginPath(); g.moveTo(left, y); g.lineTo(width, y); g.stroke();
    g.fillText(Math.round(top * i / 4).toLocaleString(), 4, y + 4);
  }
  g.fillText("-5 min", left, height - 4);
  g.fillText("now", width - 24, height - 4);
  ROWS.forEach((row, index) => {
    const values = chart[row] || [];
    g.strokeStyle = COLOURS[row];
    g.lineWidth = 2;
    g.beginPath();
    let drawing = false;
    chart.t.forEach((t, i) => {
      if (values[i] === null) { drawing = false; return; }
      const x = left + (width - left) * (1 - (now - t) / span);
      const y = above + (height - bottom - above) * (1 - values[i] / top);
      if (drawing) g.lineTo(x, y); else g.moveTo(x, y);
      drawing = true;
    });
    g.stroke();
    g.fillStyle = COLOURS[row];
    g.fillText(row, width - 130 + index * 60, 12);
  });
}

function appendEvent(event) {
  const log = document.getElementById("log");
  const line = element("li");
  line.append(element("span", { class: "time" }, (event.time || "").trim() + "  "));
  line.append(element("span", { class: "id" }, event.id));
  line.append(document.createTextNode("  " + event.source + "  fcode=0x" + event.fcode.toString(16) +
                                      (event.status && event.status !== "None" ? "  " + event.status : "") +
                                      (event.description ? "  " + event.description : "")));
  log.prepend(line);
  while (log.children.length > 200) log.lastChild.remove();
}

async function press(action, row) {
  const query = new URLSearchParams({ action: action, row: row || "" });
  try {
    const answer = await fetch("/api/press?" + query, { method: "POST", headers: { "X-Chanweb": "1" } });
    const reply = await answer.json();
    if (answer.status === 409) {
      appendEvent({ id: action + " refused: another press is still waiting", source: row || "", fcode: 0 });
      return;
    }
    if (reply.daemon === "not answering") {
      appendEvent({ id: reply.command + " not sent: daemon not answering", source: row || "", fcode: reply.fcode });
    } else if (reply.result && reply.result !== "OK") {
      appendEvent({ id: reply.command + " refused: " + reply.result, source: row || "", fcode: reply.fcode });
    }
  } catch (error) {
    appendEvent({ id: "request failed: " + error, source: row || "", fcode: 0 });
  }
}

document.addEventListener("click", (event) => {
  const button = event.target.closest("button[data-action]");
  if (button) press(button.dataset.action, button.dataset.row);
});

let daemonAnswering = true;
let streamOpen = false;
function showLink() {
  const link = document.getElementById("link");
  if (!streamOpen) { link.textContent = "reconnecting…"; link.className = "link down"; }
  else if (!daemonAnswering) { link.textContent = "daemon not answering"; link.className = "link down"; }
  else { link.textContent = "live"; link.className = "link up"; }
}

// The browser reconnects by itself and names the last message it saw, so
// chanweb sends only what came after; a "gap" says some of it was lost.
function connect() {
  const source = new EventSource("/api/events");
  source.onopen = () => { streamOpen = true; showLink(); };
  source.onerror = () => { streamOpen = false; showLink(); };
  source.addEventListener("status", (message) => renderStatus(JSON.parse(message.data)));
  source.addEventListener("log", (message) => appendEvent(JSON.parse(message.data)));
  source.addEventListener("daemon", (message) => {
    daemonAnswering = JSON.parse(message.data).daemon === "answering";
    showLink();
  });
  source.addEventListener("gap", (message) => {
    const reason = JSON.parse(message.data).reason;
    appendEvent({ id: reason === "restarted" ? "chanweb restarted: earlier events are not shown"
                                             : "some events were missed while disconnected", source: "", fcode: 0 });
  });
}

for (const card of document.querySelectorAll(".channel")) renderChannel(card, null);
connect();
setInterval(() => { if (lastStatus) drawChart(lastStatus.chart || { t: [] }); }, 2000);
