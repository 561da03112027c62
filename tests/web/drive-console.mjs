// Drives the chanweb console in headless Chromium through the DevTools
// protocol on a pipe (--remote-debugging-pipe: commands on the browser's fd 3,
// answers on its fd 4, each JSON message ended by a NUL). No driver package:
// node and Debian's chromium are all it needs.
//   node drive-console.mjs CHROMIUM URL SCREENSHOT
// Loads the factory channel data and plays HEVC with the page's own buttons
// (real mouse clicks), checks that the page shows "Playing" and that the event
// log shows "Channel Played", and saves a screenshot. Every wait is bounded;
// the whole run ends within LIMIT_MS, and the browser it started is killed by
// its pid on the way out.
import { spawn } from "node:child_process";
import { mkdtempSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";

const [browserPath, url, screenshot, daemonPid] = process.argv.slice(2);
const LIMIT_MS = 90000;
const profile = mkdtempSync(join(tmpdir(), "chanweb-chromium-"));
const browser = spawn(browserPath, [
  "--headless=new", "--remote-debugging-pipe", "--no-sandbox", "--disable-gpu", "--no-first-run",
  "--no-default-browser-check", "--disable-extensions", "--hide-scrollbars", "--window-size=1280,1000",
  "--user-data-dir=" + profile, "about:blank",
], { stdio: ["ignore", "ignore", "pipe", "pipe", "pipe"] });
let browserErrors = "";
browser.stderr.on("data", (chunk) => { browserErrors = (browserErrors + chunk).slice(-4000); });

let failed = false;
const sleep = (ms) => new Promise((resolve) => setTimeout(resolve, ms));
const running = () => browser.exitCode === null && browser.signalCode === null;
// Waits (bounded) for the browser to end, after Browser.close; kills it by its
// pid if it did not, then removes its profile.
async function end(code) {
  const exited = new Promise((resolve) => browser.once("exit", resolve));
  if (running() && code === 0) await Promise.race([exited, sleep(5000)]);
  if (running()) {
    browser.kill("SIGKILL");
    await Promise.race([exited, sleep(2000)]);
  }
  try {
    rmSync(profile, { recursive: true, force: true, maxRetries: 5, retryDelay: 100 });
  } catch (error) {
    console.log("# profile " + profile + " left behind: " + error.message);
  }
  process.exit(code);
}
const deadline = setTimeout(() => { console.log("not ok - the run took longer than " + LIMIT_MS + " ms"); end(1); },
                            LIMIT_MS);
browser.on("exit", (code, signal) => {
  if (!failed && pending.size > 0) {
    console.log("not ok - chromium ended (" + (code ?? signal) + ")\n" + browserErrors);
    end(1);
  }
});

// ---- the protocol ----
const pending = new Map();
let lastId = 0;
let buffer = "";
browser.stdio[4].on("data", (chunk) => {
  buffer += chunk.toString("utf8");
  let end;
  while ((end = buffer.indexOf("\0")) >= 0) {
    const message = JSON.parse(buffer.slice(0, end));
    buffer = buffer.slice(end + 1);
    const waiter = pending.get(message.id);
    if (waiter === undefined) continue;
    pending.delete(message.id);
    if (message.error) waiter.reject(new Error(JSON.stringify(message.error)));
    else waiter.resolve(message.result);
  }
});
function send(method, params = {}, sessionId = undefined) {
  const id = ++lastId;
  return new Promise((resolve, reject) => {
    pending.set(id, { resolve, reject });
    browser.stdio[3].write(JSON.stringify({ id, method, params, sessionId }) + "\0");
  });
}

let session;
async function evaluate(expression) {
  const answer = await send("Runtime.evaluate", { expression, returnByValue: true, awaitPromise: true }, session);
  if (answer.exceptionDetails) throw new Error(expression + ": " + JSON.stringify(answer.exceptionDetails));
  return answer.result.value;
}
// Polls `expression` until it is true, for at most `limitMs`; one that throws
// (the page still loading) counts as not yet.
async function waitFor(what, expression, limitMs = 30000) {
  const until = Date.now() + limitMs;
  while (Date.now() < until) {
    if (await evaluate(expression).catch(() => false)) { console.log("ok - " + what); return; }
    await new Promise((resolve) => setTimeout(resolve, 200));
  }
  throw new Error(what + ": not seen within " + limitMs + " ms; the page says:\n" +
                  (await evaluate("document.body.innerText")));
}
// A real click: the mouse pressed and released over the element's centre.
async function click(selector) {
  const at = await evaluate(`(() => { const r = document.querySelector(${JSON.stringify(selector)})
                                        .getBoundingClientRect(); return { x: r.x + r.width / 2, y: r.y + r.height / 2 }; })()`);
  for (const type of ["mousePressed", "mouseReleased"])
    await send("Input.dispatchMouseEvent", { type, x: at.x, y: at.y, button: "left", clickCount: 1 }, session);
  console.log("ok - clicked " + selector);
}

const card = (row) => `document.querySelector('.channel[data-row="${row}"]')`;
try {
  const { targetId } = await send("Target.createTarget", { url });
  ({ sessionId: session } = await send("Target.attachToTarget", { targetId, flatten: true }));
  await send("Runtime.enable", {}, session);
  await waitFor("the page is live", "document.getElementById('link').textContent === 'live'");
  await waitFor("it says no channel data is loaded",
                "document.getElementById('notice').textContent.includes('No channel data loaded')");
  await click("#load");
  await waitFor("HEVC shows Stopped after the load", `${card("HEVC")}.querySelector('.state').textContent === 'Stopped'`);
  await click('.channel[data-row="HEVC"] button.play');
  await waitFor("HEVC shows Playing", `${card("HEVC")}.querySelector('.state').textContent === 'Playing'`);
  await waitFor("the event log shows Channel Played",
                "[...document.querySelectorAll('#log li')].some((li) => li.textContent.includes('Channel Played'))");
  await waitFor("the chart has HEVC samples",
                "lastStatus !== null && lastStatus.chart.HEVC.filter((v) => v !== null).length >= 3", 20000);
  const { data } = await send("Page.captureScreenshot", { format: "png" }, session);
  writeFileSync(screenshot, Buffer.from(data, "base64"));
  if (data.length < 1000) throw new Error("the screenshot is empty");
  console.log("ok - screenshot " + screenshot);
  // A frozen daemon: the page says so and a press is answered at once; it comes back live.
  process.kill(Number(daemonPid), "SIGSTOP");
  try {
    await waitFor("the page says the daemon is not answering",
                  "document.getElementById('link').textContent === 'daemon not answering'", 8000);
    await click('.channel[data-row="H.264"] button.stop');
    await waitFor("a press is answered within 2 s: not sent, daemon not answering",
                  "document.getElementById('log').textContent.includes('Stop not sent: daemon not answering')", 2000);
  } finally {
    process.kill(Number(daemonPid), "SIGCONT");
  }
  await waitFor("the page is live again", "document.getElementById('link').textContent === 'live'", 15000);
  await send("Browser.close").catch(() => {});
} catch (error) {
  failed = true;
  console.log("not ok - " + error.message);
  clearTimeout(deadline);
  await end(1);
}
clearTimeout(deadline);
await end(0);
