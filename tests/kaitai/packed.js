// File dumps, byte by byte.
'use strict';

// The bytes that packed groups carry.
function unpacked(packed) {
  const bytes = [];
  for (const group of packed.groups.groups)
    for (let i = 0; i < group.lowBits.length; ++i) bytes.push(group[`byte${i}`]);
  return Buffer.from(bytes);
}

// Which byte of name or content each data byte of a file dump carries; a list for one with the top bits of several.
function* placesOf({ name, content }) {
  for (const [what, packed] of [['name', name], ['content', content]]) {
    yield* [[], []]; // the byte count
    let next = 0;
    for (const group of packed.groups.groups) {
      yield [what, group.lowBits.map((_, i) => next + i)];
      for (let i = 0; i < group.lowBits.length; ++i) yield [what, next++];
    }
  }
}

// The bytes of a stored content with these models, see docs/content-format.md.
function encoded(models) {
  const WORDS = ['tune', 'tempo', 'arpeggioTempo', 'arpeggioSix', 'six', 'wave', 'reverb', 'chorus', 'masterEffect',
    'insertionA', 'insertionB', 'insertionL'];
  const NAME_LENGTH = 20;
  const isDrum = models.voice && models.voice.key.length > 0;
  const bytes = [...Buffer.from('BDAC'), 1, (models.voice ? (isDrum ? 2 : 1) : 0) | 4 | 8];
  const add = (value, key) => {
    if (typeof value === 'string') {
      const characters = [...Buffer.from(value, 'latin1')];
      bytes.push(characters.length, ...characters, ...Array(NAME_LENGTH - characters.length).fill(0));
    } else if (typeof value === 'number') {
      if (WORDS.includes(key)) bytes.push(value >> 8);
      bytes.push(value & 0xff);
    } else {
      for (const [inner, one] of Object.entries(value)) add(one, Array.isArray(value) ? key : inner);
    }
  };
  add(models, '');
  return Buffer.from(bytes);
}

module.exports = { unpacked, placesOf, encoded };
