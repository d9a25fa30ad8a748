// Debian's Firefox, driven by its own protocol: JSON over a socket, each message behind its length.
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { existsSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { connect } from 'node:net';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { setTimeout as pause } from 'node:timers/promises';

const program = process.env.FIREFOX ?? '/usr/bin/firefox-esr';
const preferences = {
  'marionette.port': 0, // any; it is written into the profile
  'app.update.auto': false,
  'browser.shell.checkDefaultBrowser': false,
  'datareporting.policy.dataSubmissionEnabled': false,
  'toolkit.telemetry.server': '',
  'network.captive-portal-service.enabled': false,
  'network.connectivity-service.enabled': false,
};
const element = 'element-6066-11e4-a52e-4f735466cecf'; // what the protocol calls an element

export class Firefox {
  static async launch() {
    const firefox = new Firefox();
    firefox.profile = mkdtempSync(join(tmpdir(), 'velora-firefox-'));
    const lines = Object.entries(preferences).map(([name, value]) => `user_pref("${name}", ${JSON.stringify(value)});`);
    writeFileSync(join(firefox.profile, 'user.js'), lines.join('\n'));
    const options = ['--headless', '--marionette', '--profile', firefox.profile, '--no-remote', 'about:blank'];
    firefox.child = spawn(program, options, { stdio: 'ignore', env: { ...process.env, HOME: firefox.profile } });
    const port = join(firefox.profile, 'MarionetteActivePort');
    while (!existsSync(port) || readFileSync(port, 'utf8') === '') {
      if (firefox.child.exitCode !== null) {
        throw new Error(`${program} ended with ${firefox.child.exitCode}`);
      }
      await pause(50);
    }
    firefox.listen(connect(Number(readFileSync(port, 'utf8')), '127.0.0.1'));
    await firefox.greeted;
    await firefox.ask('WebDriver:NewSession', { capabilities: {} });
    return firefox;
  }

  listen(socket) {
    Object.assign(this, { socket, number: 0, waiting: new Map() });
    let received = Buffer.alloc(0);
    this.greeted = new Promise((resolve) => (this.greet = resolve));
    socket.on('data', (data) => {
      received = Buffer.concat([received, data]);
      for (let colon = received.indexOf(':'); colon > 0; colon = received.indexOf(':')) {
        const end = colon + 1 + Number(received.subarray(0, colon));
        if (received.length < end) {
          return;
        }
        this.take(JSON.parse(received.subarray(colon + 1, end)));
        received = received.subarray(end);
      }
    });
  }

  take(message) {
    if (!Array.isArray(message)) {
      this.greet();
      return;
    }
    const [, number, error, value] = message;
    const { resolve, reject } = this.waiting.get(number);
    this.waiting.delete(number);
    if (error) {
      reject(new Error(`${error.error}: ${error.message}`));
    } else {
      resolve(value);
    }
  }

  ask(command, parameters = {}) {
    const number = ++this.number;
    const message = JSON.stringify([0, number, command, parameters]);
    this.socket.write(`${Buffer.byteLength(message)}:${message}`);
    return new Promise((resolve, reject) => this.waiting.set(number, { resolve, reject }));
  }

  open(address) {
    return this.ask('WebDriver:Navigate', { url: address });
  }

  /** What a function of the page answers. */
  async evaluate(work, ...args) {
    const script = `return (${work})(...arguments);`;
    return (await this.ask('WebDriver:ExecuteScript', { script, args })).value;
  }

  /** Waits until a function of the page answers something that is true. */
  async until(work, ...args) {
    const begun = Date.now();
    while (!(await this.evaluate(work, ...args))) {
      if (Date.now() - begun > 60000) {
        throw new Error(`it never came to: ${work} ${JSON.stringify(args)}`);
      }
      await pause(50);
    }
  }

  async find(selector) {
    const { value } = await this.ask('WebDriver:FindElement', { using: 'css selector', value: selector });
    return value[element];
  }

  async click(selector) {
    await this.ask('WebDriver:ElementClick', { id: await this.find(selector) });
  }

  /** Types with the keyboard; "\uE007" is Enter. */
  async type(selector, text) {
    await this.ask('WebDriver:ElementSendKeys', { id: await this.find(selector), text });
  }

  async picture() {
    return Buffer.from((await this.ask('WebDriver:TakeScreenshot', { full: false })).value, 'base64');
  }

  async close() {
    const ended = once(this.child, 'exit');
    await this.ask('Marionette:Quit', { flags: ['eForceQuit'] }).catch(() => {});
    await ended;
    rmSync(this.profile, { recursive: true, force: true });
  }
}
