// Reads message files by program/bda.ksy, and compares what it reads with what bda says of them:
//
//   node compare.js BDA KSY EXAMPLES COUNT WORK
//
// the files of the folder EXAMPLES, COUNT random units as they come, the same as bda sends them, and messages of all
// other kinds. It writes its files into the folder WORK.
'use strict';

const assert = require('assert');
const fs = require('fs');
const path = require('path');
const { Bda } = require('./bda.js');
const { Comparison } = require('./comparison.js');
const { Description } = require('./description.js');
const { randomOf, randomUnits } = require('./units.js');

const [program, ksy, examples, count, work] = process.argv.slice(2);
const bda = new Bda(program);
const SEED = 815;

// Units of every kind, copied from those of the examples.
const UNITS = ['voice:user1:1', 'voice:edit', 'voice:mix:1', 'drum:user:1', 'drum:edit', 'multi:edit',
  'performance:a:1', 'performance:edit', 'master:1', 'master:edit', 'remote:1', 'remote:edit', 'system'];
const COPIES = [['voice:user1:1', 'voice:edit'], ['voice:user1:1', 'voice:mix:1'], ['drum:user:1', 'drum:edit'],
  ['performance:a:1', 'performance:edit'], ['master:1', 'master:edit'], ['remote:1', 'remote:edit']];
const FILE_DUMPS = ['file:voice:user1:1', 'file:voice:mix:1', 'file:drum:user:1', 'file:multi:1'];

const inWork = (name) => path.join(work, name);
const exampleFiles = () =>
  fs.readdirSync(examples).filter((name) => name.endsWith('.syx')).map((name) => path.join(examples, name));

// As they come, with bits that nothing carries, and as bda sends what it has received of them.
function compareRandomUnits(comparison) {
  const from = { library: inWork('units.db') };
  bda.run(['receive', ...exampleFiles()], from);
  for (const [one, other] of COPIES) bda.run(['copy', one, other], from);
  bda.run(['request', ...UNITS, '-o', inWork('units.syx')], from);
  const units = fs.readFileSync(inWork('units.syx'));

  const random = randomOf(SEED);
  const received = { library: inWork('random.db') };
  for (let done = 0; done < count; done += UNITS.length) {
    fs.writeFileSync(inWork('random.syx'), randomUnits(units, random));
    comparison.file(inWork('random.syx'));
    bda.run(['receive', inWork('random.syx')], received);
    bda.run(['copy', 'multi:edit', 'file:multi:1'], received);
    bda.run(['request', ...UNITS, ...FILE_DUMPS, 'write', '-o', inWork('sent.syx')], received);
    comparison.file(inWork('sent.syx'));
  }
}

// What is no block of parameters: names, favourites, the screen.
function compareOtherBlocks(comparison) {
  const library = { library: inWork('random.db') };
  const file = inWork('other.syx');
  const blocks = ['names:waveforms:2', 'names:arpeggios:16', 'names:multis', 'favourites:drum:user', 'screen'];
  fs.writeFileSync(inWork('names.txt'), 'waveform 17 First of Two\narpeggio 256 Last\n');
  bda.run(['rename', 'file:multi:1', 'Of Parts'], library);
  bda.run(['favourite', 'drum:user:1', 'on'], library);
  bda.run(['request', '--names', inWork('names.txt'), ...blocks, '-o', file], library);
  comparison.file(file);

  const carried = comparison.description.read(file).messages.map(({ body }) => body.data);
  const [waveforms, arpeggios, multis, favourites, screen, ...pieces] = carried;
  const named = (count, i, name) => Array.from({ length: count }, (_, at) => (at === i ? name : ''));
  assert.deepStrictEqual(waveforms.names, named(16, 0, 'First of Two'));
  assert.deepStrictEqual(arpeggios.names, named(16, 15, 'Last'));
  assert.deepStrictEqual(multis.names, named(128, 0, 'Of Parts'));
  assert.deepStrictEqual(favourites.flags, [1, ...Array(31).fill(0)]);
  const { blockCount, width, height } = screen.head;
  assert.deepStrictEqual(pieces.map(({ block }) => block.number.value), [...Array(blockCount.value).keys()]);
  const pixels = pieces.reduce((sum, { block }) => sum + block.pixels.length, 0);
  assert.strictEqual(pixels, width.value * height.value);
  assert(pixels > 0);
}

// Messages that are broken, of somebody else or none, and what is cut short at the end.
function compareOthers(comparison) {
  const hex = `90 40 7F
    F0 7E 7F 06 01 F7
    F0 7D 20 7F 14 0E 0A 00 F7
    F0 7D 25 01 15 0E 0A 00 F7
    F0 7D 20 7F 14 0E 0A F7  F0 7D 20 7F 14 0E 0A 00 00 F7
    F0 7D 60 02 F7  F0 7D 10 7F 14 00 00 00 00 F7  F0 7D 50 7F 14 00 00 00 00 F7
    F0 7D 03 7F 14 00 00 0E 0A 00 68 F7  F0 7D 00 7F 14 00 00 0E 0A 00 67 F7
    F0 7D 00 7F 14 00 01 0E 0A 00 67 F7
    F0 7D 00 7F 14 00 04 00 06 00 01 02 03 04 6C F7
    F0 7D 00 7F 14 00 01 55 55 55 01 7F F7
    F0 7D 00 7F 14 00 01 0C 0A 00 01 68 F7  F0 7D 00 7F 14 00 03 0C 0A 00 00 09 01 5D F7
    F0 7D 00 7F 14 00 00 11 00 00 6F F7
    01 02  F0 F7  F0 7D F7  F0 7D 00 7F 14`;
  fs.writeFileSync(inWork('others.syx'), Buffer.from(hex.replace(/\s/g, ''), 'hex'));
  comparison.file(inWork('others.syx'), true);
}

async function main() {
  const comparison = new Comparison(bda, await Description.of(ksy));
  for (const file of exampleFiles()) comparison.file(file);
  compareRandomUnits(comparison);
  compareOtherBlocks(comparison);
  compareOthers(comparison);
  assert.deepStrictEqual([...comparison.description.unread], [], 'instances that no message has');
  const { files, units, values, packedBytes } = comparison;
  console.log(`${files} files: ${values} parameters of ${units} units, ${packedBytes} packed bytes: as bda says`);
}

main().catch((error) => {
  console.error(error.message || error);
  process.exit(1);
});
