// Tries chanweb as a hostile client on this machine or a foreign page would,
// against the processes console-test started:
//   node attack-console.mjs URL CHANWEB_PID
// Security headers, a rebinding Host, a 1 MiB body, many byte ranges, 24 open
// event streams and slow-header clients while status and Play must still
// answer within a second, and a resumed event stream without duplicates.
// Every wait is bounded; every socket it opens is closed before it ends.
import { connect } from "node:net";
import { readFileSync } from "node:fs";

const [url, pid] = process.argv.slice(2);
const { hostname: host, port } = new URL(url);
let failures = 0;
const check = (ok, what, detail = "") => {
  console.log((ok ? "ok - " : "not ok - ") + what + (ok || !detail ? "" : ": " + detail));
  if (!ok) failures++;
};
const sleep = (ms) => new Promise((resolve) => setTimeout(resolve, ms));
const rssKiB = () => Number(/VmRSS:\s+(\d+)/.exec(readFileSync(`/proc/${pid}/status`, "utf8"))[1]);

// One raw request; resolves with the whole reply text, or what came within `limitMs`.
function raw(text, limitMs = 3000, body = null) {
  return new Promise((resolve) => {
    const socket = connect(Number(port), host);
    let reply = "";
    const done = () => { clearTimeout(timer); socket.destroy(); resolve(reply); };
    const timer = setTimeout(done, limitMs);
    socket.on("data", (chunk) => { reply += chunk.toString("latin1"); });
    socket.on("end", done);
    socket.on("error", done);
    socket.write(text);
    if (body) socket.write(body);
  });
}
const get = (path, headers = "") => raw(`GET ${path} HTTP/1.1\r\nHost: ${host}\r\n${headers}Connection: close\r\n\r\n`);
const statusOf = (reply) => Number((/^HTTP\/1\.1 (\d+)/.exec(reply) || [0, 0])[1]);
async function timed(action) {
  const start = Date.now();
  const reply = await action();
  return { reply, ms: Date.now() - start };
}
const press = (action, row) => raw(`POST /api/press?action=${action}&row=${row} HTTP/1.1\r\nHost: ${host}\r\n` +
                                   "X-Chanweb: 1\r\nContent-Length: 0\r\nConnection: close\r\n\r\n", 8000);

// Headers, Host, body, ranges.
const page = await get("/");
for (const header of ["X-Frame-Options: DENY", "frame-ancestors 'none'", "X-Content-Type-Options: nosniff",
                      "Referrer-Policy: no-referrer"])
  check(page.includes(header), "the page's reply carries " + header, page.slice(0, 400));
check(statusOf(await get("/api/status")) === 200, "status answers for its own Host");
const rebound = await raw("GET /api/status HTTP/1.1\r\nHost: rebound.example:" + port + "\r\nConnection: close\r\n\r\n");
check(statusOf(rebound) === 421 && !rebound.includes("channels"), "a foreign Host is refused (421)", rebound);
const before = rssKiB();
const big = await raw(`POST /api/press?action=play&row=HEVC HTTP/1.1\r\nHost: ${host}\r\nX-Chanweb: 1\r\n` +
                      `Content-Length: ${1 << 20}\r\nConnection: close\r\n\r\n`, 5000, Buffer.alloc(1 << 20, 97));
check(statusOf(big) === 413, "a 1 MiB body is refused (413)", big.slice(0, 200));
check(rssKiB() - before < 2048, "the refused body did not grow chanweb", `${before} -> ${rssKiB()} KiB`);
const ranges = Array.from({ length: 200 }, () => "0-").join(",");
const multi = await get("/console.js", `Range: bytes=${ranges}\r\n`);
check(statusOf(multi) === 416 && multi.length < 2000, "a many-range request is refused (416)", multi.slice(0, 200));

// A reconnect naming the last id it saw gets only later messages.
const ids = (text) => [...text.matchAll(/^id: (\d+)$/gm)].map((m) => Number(m[1]));
let seen = [], lastReply = "";
for (let i = 0; i < 10 && seen.length < 2; ++i)
  seen = ids(lastReply = await raw(`GET /api/events HTTP/1.1\r\nHost: ${host}\r\nConnection: close\r\n\r\n`, 1500));
check(seen.length >= 2, "the event stream numbers its messages", lastReply.slice(0, 600));
const last = Math.max(...seen);
const stop = press("stop", "HEVC");
const resumed = ids(await raw(`GET /api/events HTTP/1.1\r\nHost: ${host}\r\nLast-Event-ID: ${last}\r\n` +
                              "Connection: close\r\n\r\n", 4000));
await stop;
check(resumed.length > 0 && resumed.every((id) => id > last) && new Set(resumed).size === resumed.length,
      "a reconnect with Last-Event-ID gets the later messages only, once each",
      `last ${last}, then ${resumed.join(",")}`);

// 24 streams: 16 are served, the rest told to come back; status and Play still answer at once.
const streams = [];
const streamStatus = [];
for (let i = 0; i < 24; ++i) {
  const socket = connect(Number(port), host);
  let text = "";
  socket.on("data", (chunk) => { text += chunk.toString(); streamStatus[i] = statusOf(text); });
  socket.on("error", () => {});
  socket.write(`GET /api/events HTTP/1.1\r\nHost: ${host}\r\n\r\n`);
  streams.push(socket);
}
// Eight clients trickling their headers, one byte every 300 ms.
const drips = Array.from({ length: 8 }, () => {
  const socket = connect(Number(port), host);
  const state = { closedAt: 0, socket, start: Date.now() };
  const text = `GET / HTTP/1.1\r\nHost: ${host}\r\nX-Slow: ${"a".repeat(200)}`;
  let at = 0;
  state.timer = setInterval(() => { if (at < text.length && !socket.destroyed) socket.write(text[at++]); }, 300);
  socket.on("close", () => { state.closedAt = Date.now(); clearInterval(state.timer); });
  socket.on("error", () => {});
  return state;
});
await sleep(1500);
const served = streamStatus.filter((s) => s === 200).length;
const turned = streamStatus.filter((s) => s === 503).length;
// The browser's stream, just closed, may hold its place until its next keep-alive.
check(served + turned === 24 && served >= 15 && served <= 16, "16 of 24 event streams served, the rest refused (503)",
      `${served} served, ${turned} refused`);
const status = await timed(() => get("/api/status"));
check(statusOf(status.reply) === 200 && status.ms < 1000, "status answers in under a second meanwhile", `${status.ms} ms`);
const play = await timed(() => press("play", "HEVC"));
check(statusOf(play.reply) === 200 && play.ms < 1000, "Play answers in under a second meanwhile",
      `${play.ms} ms ${play.reply.slice(0, 120)}`);
for (let i = 0; i < 40 && drips.some((d) => d.closedAt === 0); ++i) await sleep(250);
check(drips.every((d) => d.closedAt > 0 && d.closedAt - d.start < 8000), "slow-header clients are cut within 8 s",
      drips.map((d) => d.closedAt ? d.closedAt - d.start : "open").join(" "));
drips.forEach((d) => { clearInterval(d.timer); d.socket.destroy(); });
streams.forEach((s) => s.destroy());
await sleep(300);

// The streams that went away gave their places back.
let again = 0;
for (let i = 0; i < 10 && again !== 200; ++i) {
  again = statusOf(await raw(`GET /api/events HTTP/1.1\r\nHost: ${host}\r\nConnection: close\r\n\r\n`, 500));
  if (again !== 200) await sleep(500);
}
check(again === 200, "closed streams give their places back within seconds", String(again));
console.log(`# chanweb resident set now ${rssKiB()} KiB`);
process.exit(failures ? 1 : 0);
