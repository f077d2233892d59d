// Numbers and names as text.
const words = {
  p(value) {
    if (value >= 0.9995) return "1";
    if (value >= 0.00095) return String(Number(value.toPrecision(2)));
    return value.toExponential(1).replace("e+", "e");
  },

  // Where the digits matter: EMP2, T.
  digits(value, count) {
    return String(Number(value.toPrecision(count)));
  },

  grouped(value) {
    return String(value).replace(/\B(?=(\d{3})+$)/g, ",");
  },

  chromosome(number) {
    return { 23: "X", 24: "Y", 25: "XY", 26: "MT" }[number] || String(number);
  },

  model: { A: "additive", D: "dominant", R: "recessive", G: "genotype", "-": "none" },

  shortened(text, longest) {
    return text.length > longest ? text.slice(0, longest - 1) + "\u2026" : text;
  },
};
