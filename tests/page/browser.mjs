// Opens pages of runs in the system's Chromium. NODE_MODULES names the folder where playwright-core lies.
import { createRequire } from 'node:module';
import { pathToFileURL } from 'node:url';

const { chromium } = createRequire(`${process.env.NODE_MODULES}/`)('playwright-core');

/** The whole browser. It shows notifications, and takes twice the time of the one that is made for tests. */
export const wholeBrowser = '/usr/bin/chromium';

export const launch = (executablePath = process.env.CHROMIUM ?? '/usr/bin/chromium-headless-shell') =>
  chromium.launch({
    executablePath,
    args: [
      '--no-sandbox',
      '--disable-gpu',
      '--disable-quic',
      '--no-first-run',
      '--disable-background-networking',
      '--disable-component-update',
      '--disable-sync',
    ],
  });

/**
 * Opens an empty page. `complaints` gathers what the browser does not like, and requests that leave the page.
 * @param mayAsk what addresses of requests are expected
 */
export async function emptyPage(browser, mayAsk, options = {}) {
  const context = await browser.newContext({
    viewport: { width: 1280, height: 900 },
    timezoneId: 'Europe/Vienna',
    acceptDownloads: true,
    ...options,
  });
  const page = await context.newPage();
  page.complaints = [];
  page.on('console', (message) => /error|warning/.test(message.type()) && page.complaints.push(message.text()));
  page.on('pageerror', (error) => page.complaints.push(String(error)));
  page.on('request', (request) => mayAsk.test(request.url()) || page.complaints.push(request.url()));
  return page;
}

/** Opens the page of a run and waits until all of it is drawn. */
export async function openReport(browser, file, options = {}) {
  const page = await emptyPage(browser, /^(file|blob|data):/, options);
  await page.goto(pathToFileURL(file).href);
  await drawn(page);
  return page;
}

/** Waits until both charts, as far as there are two, have finished drawing. */
const drawn = (page) =>
  page.waitForFunction(() =>
    [...document.querySelectorAll('.chart')].every((chart) => chart.dataset.drawn || chart.offsetParent === null),
  );

/** Does something that makes the charts draw, and waits for it. */
export async function afterDrawing(page, action) {
  await page.$$eval('.chart', (charts) => charts.forEach((chart) => delete chart.dataset.drawn));
  await action();
  await page.waitForFunction(() => [...document.querySelectorAll('.chart')].some((chart) => chart.dataset.drawn));
}
