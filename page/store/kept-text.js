// A text that the browser keeps between visits; one that it refuses is kept as long as the page is open.

export class KeptText {
  constructor(name) {
    this.name = name;
  }

  get() {
    try {
      return window.localStorage.getItem(this.name) ?? this.text;
    } catch {
      return this.text;
    }
  }

  set(text) {
    this.text = text;
    try {
      window.localStorage.setItem(this.name, text);
    } catch {
      // storage is switched off, or full
    }
  }
}
