// Colours from the style sheet, and when they change: by the system's scheme, or for paper.
const theme = {
  colour(name) {
    return getComputedStyle(document.documentElement).getPropertyValue("--" + name).trim();
  },

  font() {
    return getComputedStyle(document.body).fontFamily;
  },

  // Calls redraw() whenever the colours or the width of the page are others.
  follow(redraw) {
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", redraw);
    const paper = (on) => () => {
      document.documentElement.toggleAttribute("data-paper", on);
      redraw();
    };
    addEventListener("beforeprint", paper(true));
    addEventListener("afterprint", paper(false));
  },

  onPaper() {
    return document.documentElement.hasAttribute("data-paper");
  },
};
