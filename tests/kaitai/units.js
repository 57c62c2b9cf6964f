// Random units: those of a library, with any seven bits in every data byte.
'use strict';

const START = 0xf0;
const END = 0xf7;
const COUNT_AT = 5;
const HIGH_AT = 7;
const DATA_AT = 10;

// A generator of numbers below `end`, the same for the same seed.
function randomOf(seed) {
  let state = seed >>> 0;
  return (end) => {
    state = (state + 0x6d2b79f5) >>> 0;
    let mixed = Math.imul(state ^ (state >>> 15), state | 1);
    mixed ^= mixed + Math.imul(mixed ^ (mixed >>> 7), mixed | 61);
    return ((mixed ^ (mixed >>> 14)) >>> 0) % end;
  };
}

function* messagesOf(bytes) {
  for (let at = 0; at < bytes.length; ) {
    const end = bytes.indexOf(END, at) + 1;
    if (bytes[at] !== START || end === 0) throw new Error(`no message at ${at}`);
    yield bytes.subarray(at, end);
    at = end;
  }
}

// Hardly any three bytes select a voice. The first two of those that may: whether they do, the third has to say.
const BANKS = [[0x3f, 0x00], [0x3f, 0x07], [0x3f, 0x0a], [0x3f, 0x0b], [0x3f, 0x20], [0x3f, 0x28], [0x3f, 0x32],
  [0x3f, 0x3c], [0x00, 0x00], [0x7f, 0x00]];
const PARTS = [0x31, 0x37]; // the high bytes of their addresses: their bytes 1 to 3 select a voice
const PROGRAMS = [0, 1, 15, 16, 31, 32, 63, 64, 127];

function randomized(message, random) {
  const any = Buffer.from(message);
  for (let at = DATA_AT; at < any.length - 2; ++at) any[at] = random(0x80);
  if (PARTS.includes(any[HIGH_AT]) && random(4) > 0)
    any.set([...BANKS[random(BANKS.length)], PROGRAMS[random(PROGRAMS.length)]], DATA_AT + 1);
  let sum = 0;
  for (let at = COUNT_AT; at < any.length - 2; ++at) sum += any[at];
  any[any.length - 2] = -sum & 0x7f;
  return any;
}

// A file of units with the same messages as `file` has.
const randomUnits = (file, random) =>
  Buffer.concat([...messagesOf(file)].map((message) => randomized(message, random)));

module.exports = { randomOf, randomUnits };
