// What program/bda.ksy reads in message files, compared with what bda says of them.
'use strict';

const assert = require('assert');
const { encoded, placesOf, unpacked } = require('./packed.js');

const SYSTEM_HIGH = 0x00;

// Every number and name of an object or a list, by its path.
function* leaves(value, at = '') {
  if (Array.isArray(value)) for (const [i, one] of value.entries()) yield* leaves(one, `${at}[${i}]`);
  else if (typeof value !== 'object') yield [at, value];
  else for (const key in value) yield* leaves(value[key], at === '' ? key : `${at}.${key}`);
}

const hexOf = ({ high, middle, low }) =>
  [high, middle, low].map((byte) => byte.toString(16).toUpperCase().padStart(2, '0')).join(' ');

class Comparison {
  constructor(bda, description) {
    this.bda = bda;
    this.description = description;
    this.files = 0;
    this.units = 0;
    this.values = 0;
    this.packedBytes = 0;
    this.withoutInstance = new Map(); // what no message carries, by shape and path
  }

  // A whole file: messages, units and file dumps.
  file(file, isBroken = false) {
    const { messages, loose } = this.description.read(file);
    const verified = this.bda.told('verify', file, isBroken);
    const explained = this.bda.told('explain', file, isBroken);
    const listed = this.messages(file, messages, loose, verified);
    this.unitsIn(file, messages, verified, explained);
    this.fileDumps(file, messages, listed, explained);
    ++this.files;
  }

  // Gives what bda says of each message.
  messages(file, messages, loose, verified) {
    const listed = verified.filter((line) => 'message' in line);
    const isCutShort = ({ verdict }) => verdict === 'cut short';
    const dropped = verified.filter((line) => 'dropped' in line && !isCutShort(line));
    assert.strictEqual(loose, dropped.reduce((sum, line) => sum + line.dropped, 0), `${file}: loose bytes`);
    assert.strictEqual(messages.length, listed.length + verified.filter(isCutShort).length, `${file}: messages`);
    for (const [i, line] of listed.entries()) this.message(messages[i], line, `${file}: message ${i + 1}`);
    return listed;
  }

  message({ body }, line, where) {
    const { Dump, Request } = this.description.Bda;
    const isOpaque = line.verdict === 'wrong length' || !['dump', 'request'].includes(line.kind);
    const kind = body instanceof Dump ? 'dump' : body instanceof Request ? 'request' : 'opaque';
    assert.strictEqual(kind, isOpaque ? 'opaque' : line.kind, where);
    if (isOpaque) return;
    assert.strictEqual(body.head.device + 1, line.device, where);
    assert.strictEqual(hexOf(body.address), line.address, where);
    const { data } = body;
    for (const part of [body, data, data && data.parameters, data && data.head, data && data.block])
      if (part && part._io) assert(part._io.isEof(), `${where} is not read to its end`);
    if (kind === 'request') return;
    assert.strictEqual(body.byteCount.value, line.dataBytes, where);
    assert.strictEqual(body.checksum, line.checksum, where);
    assert.strictEqual(body.expectedChecksum, line.expectedChecksum, where);
  }

  // The parameters of each unit. Which of them a message carries, `bda explain` says.
  unitsIn(file, messages, verified, explained) {
    const units = verified
      .filter((line) => line.state === 'complete')
      .map((line) => ({ target: line.unit, messages: messages.slice(line.firstMessage - 1, line.lastMessage) }));
    const isOfSystem = ({ body }) => body.address.high === SYSTEM_HIGH;
    const system = messages.filter((one) => this.description.valuesOf(one).size > 0 && isOfSystem(one));
    if (system.length > 0) units.push({ target: 'system', messages: system });
    if (units.length === 0) return;

    const carried = new Map(messages.map((message) => [message, new Set()]));
    for (const { message, parameters = [] } of explained)
      for (const parameter of parameters) carried.get(messages[message - 1]).add(parameter.path);
    const shown = this.bda.shown(file, units.map((unit) => unit.target));
    for (const [i, unit] of units.entries()) {
      const where = `${file}: ${unit.target}`;
      for (const one of unit.messages) {
        const paths = [...this.description.valuesOf(one).keys()].sort();
        assert.deepStrictEqual(paths, [...carried.get(one)].sort(), where);
      }
      this.unit(unit.messages, shown[i], where);
    }
  }

  // In both directions: every instance has its path, every path its instance, unless no message carries it.
  unit(messages, models, where) {
    const shown = new Map(leaves(models));
    const read = new Map(messages.flatMap((message) => [...this.description.valuesOf(message)]));
    for (const [path, value] of read) {
      assert(shown.has(path), `${where}: ${path} is no path`);
      // A voice that does not exist is not received, and that of a fresh part is 0.
      assert.strictEqual(value === undefined ? 0 : value, shown.get(path), `${where}: ${path}`);
      ++this.values;
    }
    const shape = `${Object.keys(models)} ${read.size}`;
    for (const [path, value] of shown) {
      if (read.has(path)) continue;
      const key = `${shape} ${path}`;
      if (!this.withoutInstance.has(key)) this.withoutInstance.set(key, value);
      assert.strictEqual(value, this.withoutInstance.get(key), `${where}: ${path} has no instance, and changes`);
    }
    ++this.units;
  }

  // Of good ones: the bytes that they carry, by `bda show`, and where each of them stands, by `bda explain`.
  fileDumps(file, messages, listed, explained) {
    const dumps = new Map(); // by their number, data byte by data byte
    for (const line of explained) {
      if (line.part !== 'data' || line.content === undefined || listed[line.message - 1].verdict !== 'good') continue;
      if (!dumps.has(line.message)) dumps.set(line.message, { target: line.name, bytes: [] });
      dumps.get(line.message).bytes.push(line);
    }
    if (dumps.size === 0) return;
    const shown = this.bda.shown(file, [...dumps.values()].map(({ target }) => target));
    for (const [message, { target, bytes }] of dumps) {
      const { data } = messages[message - 1].body;
      const where = `${file}: ${target}`;
      const models = shown.shift();
      assert.deepStrictEqual(unpacked(data.content), encoded(models), where);
      assert.strictEqual(unpacked(data.name).toString('latin1'), (models.voice || models.multi).name, where);
      assert.strictEqual(data.unused.length, 0, where);
      const places = bytes.map(({ nameByte, contentByte }) =>
        nameByte !== undefined ? ['name', nameByte] : contentByte !== undefined ? ['content', contentByte] : []);
      assert.deepStrictEqual([...placesOf(data)], places, where);
      this.packedBytes += bytes.length;
    }
  }
}

module.exports = { Comparison };
