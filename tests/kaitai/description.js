// program/bda.ksy, compiled: reads files of messages, and knows the parameters of each block by their paths.
'use strict';

const fs = require('fs');
const compiler = require('kaitai-struct-compiler');
const yaml = require('yaml');
const KaitaiStream = require('kaitai-struct/KaitaiStream');

// As the compiler names fields and types.
const camel = (id) => id.replace(/_(.)/g, (_, c) => c.toUpperCase());
const upper = (id) => camel(`_${id}`);

class Description {
  static async of(file) {
    const parsed = yaml.parse(fs.readFileSync(file, 'utf8'));
    const sources = await compiler.compile('javascript', parsed, null, false);
    const exported = {};
    new Function('exports', 'require', sources['Bda.js'])(exported, require);
    return new Description(parsed, exported.Bda);
  }

  constructor(parsed, Bda) {
    this.Bda = Bda;
    this.unread = new Set(); // instances that no block has been asked for, as "type.id"
    this.parameters = new Map(); // of each class of blocks: what its instances are called, and their paths
    for (const [type, { instances = {} }] of Object.entries(parsed.types)) {
      const named = Object.entries(instances).filter(([, instance]) => '-orig-id' in instance);
      if (named.length === 0) continue;
      this.parameters.set(
        Bda[upper(type)],
        named.map(([id, instance]) => ({ id: camel(id), path: instance['-orig-id'], key: `${type}.${id}` })),
      );
      for (const [id] of named) this.unread.add(`${type}.${id}`);
    }
  }

  // The messages of a file, and how many bytes stand in none.
  read(file) {
    const { pieces } = new this.Bda(new KaitaiStream(fs.readFileSync(file)));
    const loose = pieces.reduce((sum, piece) => sum + piece.loose.length, 0);
    return { messages: pieces.map((piece) => piece.message).filter((message) => message !== undefined), loose };
  }

  isDump(message) {
    return message.body instanceof this.Bda.Dump;
  }

  // The parameters of a message by their paths; undefined: received as nothing.
  valuesOf(message) {
    const values = new Map();
    const block = this.isDump(message) && message.body.data instanceof this.Bda.Block && message.body.data.parameters;
    for (const { id, path, key } of (block && this.parameters.get(block.constructor)) || []) {
      values.set(path.replace('[i]', `[${block.i}]`), block[id]);
      this.unread.delete(key);
    }
    return values;
  }
}

module.exports = { Description };
