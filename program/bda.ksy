# Written from the tables that the module converts by, as docs/layouts.md is; a test compares them.
meta:
  id: bda
  title: System Exclusive bulk dumps and requests of the instrument
  file-extension: syx
  license: MIT
  ks-version: 0.9
  endian: be
  bit-endian: be
doc: |
  A file of MIDI bytes: messages from F0 to F7, and whatever stands between them.

  Each parameter of a block is an instance, whose value is that of `bda show --json`; `-orig-id` is its path there. An i
  in a path is the parameter i of the type, which counts the blocks of that layout. A message that does not fit its own
  byte count and one of somebody else are opaque, and so is the data of a block that has another length.
seq:
  - id: pieces
    type: piece
    repeat: eos
types:
  piece:
    seq:
      - id: loose
        terminator: 0xf0
        consume: false
        eos-error: false
        doc: Bytes of no message.
      - id: message
        type: message
        terminator: 0xf7
        eos-error: false
        if: not _io.eof
  message:
    seq:
      - id: start
        contents: [0xf0]
      - id: body
        size-eos: true
        type:
          switch-on: kind
          cases:
            0: dump
            2: request
    instances:
      bytes:
        pos: 0
        size-eos: true
      is_ours:
        value: >-
          _io.size >= 8 and bytes[1] == 0x7d and
          (bytes[3] == 0x7f and bytes[4] == 0x14 or bytes[4] == 0x15)
      is_dump:
        value: >-
          is_ours and bytes[2] >> 4 == 0 and _io.size >= 11 and
          _io.size - 11 == (bytes[5] << 7 | bytes[6])
      is_request:
        value: is_ours and bytes[2] >> 4 == 2 and _io.size == 8
      kind:
        value: 'is_dump ? 0 : is_request ? 2 : -1'
        doc: The type of a dump or a request.
  head:
    seq:
      - id: maker
        type: u1
      - id: type
        type: b4
      - id: device
        type: b4
        doc: The device number, from 0.
      - id: model
        type: u2
  address:
    seq:
      - id: high
        type: u1
      - id: middle
        type: u1
      - id: low
        type: u1
  seven_bit_pair:
    seq:
      - id: high
        type: u1
      - id: low
        type: u1
    instances:
      value:
        value: high << 7 | low
  request:
    seq:
      - id: head
        type: head
      - id: address
        type: address
  dump:
    seq:
      - id: head
        type: head
      - id: byte_count
        type: seven_bit_pair
      - id: address
        type: address
      - id: data
        size: byte_count.value
        doc: |
          A header (0x0e), the footer with the same other two bytes (0x0f) and a trigger that has
          file dumps written (0x11) have none.
        type:
          switch-on: address.high
          cases:
            0x00: block
            0x01: block
            0x0c: file_dump
            0x30: block
            0x31: block
            0x32: block
            0x33: block
            0x34: block
            0x35: block
            0x36: block
            0x37: block
            0x38: block
            0x39: block
            0x40: block
            0x41: block
            0x42: block
            0x46: block
            0x47: block
            0x51: screen
            0x70: names
            0x71: favourites
      - id: checksum
        type: u1
    instances:
      sums:
        pos: 4
        type: 'running_sum(_index == 0 ? 0 : sums[_index - 1].value)'
        repeat: expr
        repeat-expr: 5 + byte_count.value
        doc: From the byte count to the last of the data.
      expected_checksum:
        value: (0x80 - sums[4 + byte_count.value].value % 0x80) % 0x80
  running_sum:
    params:
      - id: before
        type: u4
    seq:
      - id: byte
        type: u1
    instances:
      value:
        value: before + byte
  file_dump:
    doc: A content, or without one of its bytes what has it removed.
    seq:
      - id: name
        type: packed
        if: _io.size >= 2
      - id: content
        type: packed
        if: _io.size - _io.pos >= 2
      - id: unused
        size-eos: true
  packed:
    seq:
      - id: byte_count
        type: seven_bit_pair
      - id: groups
        type: packed_groups
        size: 'byte_count.value < _io.size - _io.pos ? byte_count.value : _io.size - _io.pos'
  packed_groups:
    seq:
      - id: groups
        type: packed_group
        size: '_io.size - _io.pos < 8 ? _io.size - _io.pos : 8'
        repeat: eos
  packed_group:
    doc: Up to 7 bytes behind one that has their top bits, the first one's in bit 6.
    seq:
      - id: top_bits
        type: u1
      - id: low_bits
        type: u1
        repeat: eos
    instances:
      byte_0:
        value: low_bits[0] | (top_bits & 0x40) << 1
        if: _io.size > 1
      byte_1:
        value: low_bits[1] | (top_bits & 0x20) << 2
        if: _io.size > 2
      byte_2:
        value: low_bits[2] | (top_bits & 0x10) << 3
        if: _io.size > 3
      byte_3:
        value: low_bits[3] | (top_bits & 0x08) << 4
        if: _io.size > 4
      byte_4:
        value: low_bits[4] | (top_bits & 0x04) << 5
        if: _io.size > 5
      byte_5:
        value: low_bits[5] | (top_bits & 0x02) << 6
        if: _io.size > 6
      byte_6:
        value: low_bits[6] | (top_bits & 0x01) << 7
        if: _io.size > 7
  names:
    doc: Of sixteen waveforms or arpeggios, or of all multis.
    seq:
      - id: names
        size: width
        type: str
        encoding: ISO-8859-1
        terminator: 0
        repeat: expr
        repeat-expr: _io.size / width
    instances:
      width:
        value: '_parent.address.middle == 0x30 ? 20 : 28'
  favourites:
    seq:
      - id: flags
        type: u1
        repeat: eos
  screen:
    seq:
      - id: head
        type: screen_head
        if: _parent.address.low == 0 and _io.size == 7
      - id: block
        type: screen_block
        if: _parent.address.low == 1 and _io.size > 2
  screen_head:
    seq:
      - id: block_count
        type: seven_bit_pair
      - id: width
        type: seven_bit_pair
      - id: height
        type: seven_bit_pair
      - id: zero
        type: u1
  screen_block:
    seq:
      - id: number
        type: seven_bit_pair
      - id: pixels
        size-eos: true
        doc: Row by row, from 0 for black to 127 for white.
  block:
    seq:
      - id: parameters
        size-eos: true
        type:
          switch-on: shape
          cases:
            0x4000_0050: normal_voice_common
            0x4600_0048: drum_voice_common
            0x4001_0026: reverb
            0x4601_0026: reverb
            0x3601_0026: reverb
            0x3001_0026: reverb
            0x4002_0028: chorus
            0x4602_0028: chorus
            0x3602_0028: chorus
            0x3002_0028: chorus
            0x4003_0024: insertion_effect_a_of_a_voice
            0x4603_0024: insertion_effect_a_of_a_voice
            0x4004_0024: insertion_effect_b_of_a_voice
            0x4604_0024: insertion_effect_b_of_a_voice
            0x4005_0044: insertion_effect_l_of_a_voice
            0x4605_0044: insertion_effect_l_of_a_voice
            0x4006_003c: normal_voice_controllers
            0x4608_0018: drum_voice_controllers
            0x4030_0056: arpeggio_of_a_voice
            0x4630_0056: arpeggio_of_a_voice
            0x4100_0058: oscillator_of_an_element(0)
            0x4101_0058: oscillator_of_an_element(1)
            0x4102_0058: oscillator_of_an_element(2)
            0x4103_0058: oscillator_of_an_element(3)
            0x4104_0058: oscillator_of_an_element(4)
            0x4105_0058: oscillator_of_an_element(5)
            0x4106_0058: oscillator_of_an_element(6)
            0x4107_0058: oscillator_of_an_element(7)
            0x4200_004a: filter_of_an_element(0)
            0x4201_004a: filter_of_an_element(1)
            0x4202_004a: filter_of_an_element(2)
            0x4203_004a: filter_of_an_element(3)
            0x4204_004a: filter_of_an_element(4)
            0x4205_004a: filter_of_an_element(5)
            0x4206_004a: filter_of_an_element(6)
            0x4207_004a: filter_of_an_element(7)
            0x4700_002e: drum_key(0)
            0x4701_002e: drum_key(1)
            0x4702_002e: drum_key(2)
            0x4703_002e: drum_key(3)
            0x4704_002e: drum_key(4)
            0x4705_002e: drum_key(5)
            0x4706_002e: drum_key(6)
            0x4707_002e: drum_key(7)
            0x4708_002e: drum_key(8)
            0x4709_002e: drum_key(9)
            0x470a_002e: drum_key(10)
            0x470b_002e: drum_key(11)
            0x470c_002e: drum_key(12)
            0x470d_002e: drum_key(13)
            0x470e_002e: drum_key(14)
            0x470f_002e: drum_key(15)
            0x4710_002e: drum_key(16)
            0x4711_002e: drum_key(17)
            0x4712_002e: drum_key(18)
            0x4713_002e: drum_key(19)
            0x4714_002e: drum_key(20)
            0x4715_002e: drum_key(21)
            0x4716_002e: drum_key(22)
            0x4717_002e: drum_key(23)
            0x4718_002e: drum_key(24)
            0x4719_002e: drum_key(25)
            0x471a_002e: drum_key(26)
            0x471b_002e: drum_key(27)
            0x471c_002e: drum_key(28)
            0x471d_002e: drum_key(29)
            0x471e_002e: drum_key(30)
            0x471f_002e: drum_key(31)
            0x4720_002e: drum_key(32)
            0x4721_002e: drum_key(33)
            0x4722_002e: drum_key(34)
            0x4723_002e: drum_key(35)
            0x4724_002e: drum_key(36)
            0x4725_002e: drum_key(37)
            0x4726_002e: drum_key(38)
            0x4727_002e: drum_key(39)
            0x4728_002e: drum_key(40)
            0x4729_002e: drum_key(41)
            0x472a_002e: drum_key(42)
            0x472b_002e: drum_key(43)
            0x472c_002e: drum_key(44)
            0x472d_002e: drum_key(45)
            0x472e_002e: drum_key(46)
            0x472f_002e: drum_key(47)
            0x4730_002e: drum_key(48)
            0x4731_002e: drum_key(49)
            0x4732_002e: drum_key(50)
            0x4733_002e: drum_key(51)
            0x4734_002e: drum_key(52)
            0x4735_002e: drum_key(53)
            0x4736_002e: drum_key(54)
            0x4737_002e: drum_key(55)
            0x4738_002e: drum_key(56)
            0x4739_002e: drum_key(57)
            0x473a_002e: drum_key(58)
            0x473b_002e: drum_key(59)
            0x473c_002e: drum_key(60)
            0x473d_002e: drum_key(61)
            0x473e_002e: drum_key(62)
            0x473f_002e: drum_key(63)
            0x4740_002e: drum_key(64)
            0x4741_002e: drum_key(65)
            0x4742_002e: drum_key(66)
            0x4743_002e: drum_key(67)
            0x4744_002e: drum_key(68)
            0x4745_002e: drum_key(69)
            0x4746_002e: drum_key(70)
            0x4747_002e: drum_key(71)
            0x4748_002e: drum_key(72)
            0x3600_0050: multi_common
            0x3000_0051: performance_common
            0x3603_0024: insertion_effect_a_of_a_multi_or_performance
            0x3003_0024: insertion_effect_a_of_a_multi_or_performance
            0x3604_0024: insertion_effect_b_of_a_multi_or_performance
            0x3004_0024: insertion_effect_b_of_a_multi_or_performance
            0x3610_0014: master_eq_of_a_multi_or_performance
            0x3010_0014: master_eq_of_a_multi_or_performance
            0x3611_0026: master_effect_of_a_multi_or_performance
            0x3011_0026: master_effect_of_a_multi_or_performance
            0x3630_000e: arpeggio_of_a_multi
            0x3030_000d: arpeggio_of_a_performance
            0x3700_003e: multi_part(0)
            0x3701_003e: multi_part(1)
            0x3702_003e: multi_part(2)
            0x3703_003e: multi_part(3)
            0x3704_003e: multi_part(4)
            0x3705_003e: multi_part(5)
            0x3706_003e: multi_part(6)
            0x3707_003e: multi_part(7)
            0x3708_003e: multi_part(8)
            0x3709_003e: multi_part(9)
            0x370a_003e: multi_part(10)
            0x370b_003e: multi_part(11)
            0x370c_003e: multi_part(12)
            0x370d_003e: multi_part(13)
            0x370e_003e: multi_part(14)
            0x370f_003e: multi_part(15)
            0x3100_003f: performance_part(0)
            0x3101_003f: performance_part(1)
            0x3102_003f: performance_part(2)
            0x3103_003f: performance_part(3)
            0x3800_0048: arpeggio_of_a_part(0)
            0x3801_0048: arpeggio_of_a_part(1)
            0x3802_0048: arpeggio_of_a_part(2)
            0x3803_0048: arpeggio_of_a_part(3)
            0x3804_0048: arpeggio_of_a_part(4)
            0x3805_0048: arpeggio_of_a_part(5)
            0x3806_0048: arpeggio_of_a_part(6)
            0x3807_0048: arpeggio_of_a_part(7)
            0x3808_0048: arpeggio_of_a_part(8)
            0x3809_0048: arpeggio_of_a_part(9)
            0x380a_0048: arpeggio_of_a_part(10)
            0x380b_0048: arpeggio_of_a_part(11)
            0x380c_0048: arpeggio_of_a_part(12)
            0x380d_0048: arpeggio_of_a_part(13)
            0x380e_0048: arpeggio_of_a_part(14)
            0x380f_0048: arpeggio_of_a_part(15)
            0x3400_0048: arpeggio_of_a_part(0)
            0x3401_0048: arpeggio_of_a_part(1)
            0x3402_0048: arpeggio_of_a_part(2)
            0x3403_0048: arpeggio_of_a_part(3)
            0x3940_0008: audio_input_part_of_a_multi_or_performance(0)
            0x3540_0008: audio_input_part_of_a_multi_or_performance(0)
            0x3300_0020: master_common
            0x3200_0010: master_zone(0)
            0x3201_0010: master_zone(1)
            0x3202_0010: master_zone(2)
            0x3203_0010: master_zone(3)
            0x0100_001b: remote_common
            0x0110_001a: remote_controller(0)
            0x0111_001a: remote_controller(1)
            0x0112_001a: remote_controller(2)
            0x0113_001a: remote_controller(3)
            0x0114_001a: remote_controller(4)
            0x0115_001a: remote_controller(5)
            0x0116_001a: remote_controller(6)
            0x0117_001a: remote_controller(7)
            0x0118_001a: remote_controller(8)
            0x0119_001a: remote_controller(9)
            0x011a_001a: remote_controller(10)
            0x011b_001a: remote_controller(11)
            0x0000_0044: system_common
            0x0040_0008: system_audio_input_part
            0x0003_0024: insertion_effect_a_of_the_systems_audio_input_part
            0x0004_0024: insertion_effect_b_of_the_systems_audio_input_part
            0x0020_0014: system_master_eq
            0x0021_0026: system_master_effect
            0x0050_000a: quick_setup(0)
            0x0051_000a: quick_setup(1)
            0x0052_000a: quick_setup(2)
            0x0053_000a: quick_setup(3)
            0x0054_000a: quick_setup(4)
            0x0055_000a: quick_setup(5)
            0x0005_0016: system_sequencer
            0x0006_0005: system_remote
    instances:
      shape:
        value: '_parent.address.low == 0 ? _parent.address.high << 24 | _parent.address.middle << 16 | _io.size : -1'
        doc: The first two bytes of the address in the high half, the number of data bytes in the low one.
  normal_voice_common:
    doc: Normal voice common.
    seq:
      - id: data
        size: 80
    instances:
      voice_name: {pos: 0, size: 20, type: str, encoding: ISO-8859-1, terminator: 0, -orig-id: 'voice.name'}
      voice_common_0: {pos: 24, type: u1, -orig-id: 'voice.common[0]'}
      voice_common_1: {pos: 25, type: u1, -orig-id: 'voice.common[1]'}
      voice_common_4: {value: 'data[30] & 0x0f', -orig-id: 'voice.common[4]'}
      voice_common_3: {value: 'data[30] >> 4', -orig-id: 'voice.common[3]'}
      voice_common_5: {pos: 31, type: u1, -orig-id: 'voice.common[5]'}
      voice_common_6: {pos: 32, type: u1, -orig-id: 'voice.common[6]'}
      voice_common_7: {pos: 33, type: u1, -orig-id: 'voice.common[7]'}
      voice_common_8: {pos: 34, type: u1, -orig-id: 'voice.common[8]'}
      voice_common_9: {pos: 35, type: u1, -orig-id: 'voice.common[9]'}
      voice_common_10: {pos: 36, type: u1, -orig-id: 'voice.common[10]'}
      voice_common_11: {pos: 37, type: u1, -orig-id: 'voice.common[11]'}
      voice_common_12: {pos: 38, type: u1, -orig-id: 'voice.common[12]'}
      voice_common_13: {pos: 40, type: u1, -orig-id: 'voice.common[13]'}
      voice_common_14: {pos: 41, type: u1, -orig-id: 'voice.common[14]'}
      voice_common_15: {pos: 42, type: u1, -orig-id: 'voice.common[15]'}
      voice_common_16: {pos: 43, type: u1, -orig-id: 'voice.common[16]'}
      multi_part_0_extra_0: {value: '(data[44] << 7 | data[45]) & 0xff', -orig-id: 'multi.part[0].extra[0]'}
      multi_part_0_extra_2: {value: '(data[48] << 7 | data[49]) & 0xff', -orig-id: 'multi.part[0].extra[2]'}
      multi_part_0_extra_5: {value: '(data[52] << 7 | data[53]) & 0xff', -orig-id: 'multi.part[0].extra[5]'}
      multi_part_0_extra_1: {pos: 46, type: u1, -orig-id: 'multi.part[0].extra[1]'}
      multi_part_0_extra_3: {pos: 50, type: u1, -orig-id: 'multi.part[0].extra[3]'}
      multi_part_0_extra_4: {pos: 51, type: u1, -orig-id: 'multi.part[0].extra[4]'}
      multi_part_0_extra_6: {pos: 54, type: u1, -orig-id: 'multi.part[0].extra[6]'}
      voice_common_17: {pos: 56, type: u1, -orig-id: 'voice.common[17]'}
      voice_common_18: {pos: 57, type: u1, -orig-id: 'voice.common[18]'}
      voice_common_19: {pos: 58, type: u1, -orig-id: 'voice.common[19]'}
      voice_common_20: {pos: 59, type: u1, -orig-id: 'voice.common[20]'}
      voice_common_23: {pos: 63, type: u1, -orig-id: 'voice.common[23]'}
      voice_common_24: {pos: 64, type: u1, -orig-id: 'voice.common[24]'}
      voice_common_25: {pos: 65, type: u1, -orig-id: 'voice.common[25]'}
      voice_common_26: {pos: 66, type: u1, -orig-id: 'voice.common[26]'}
      voice_common_27: {pos: 67, type: u1, -orig-id: 'voice.common[27]'}
      voice_common_28: {pos: 68, type: u1, -orig-id: 'voice.common[28]'}
      voice_common_29: {pos: 69, type: u1, -orig-id: 'voice.common[29]'}
      voice_common_30: {pos: 70, type: u1, -orig-id: 'voice.common[30]'}
      voice_common_31: {pos: 71, type: u1, -orig-id: 'voice.common[31]'}
      voice_common_32: {pos: 72, type: u1, -orig-id: 'voice.common[32]'}
      voice_common_33: {pos: 73, type: u1, -orig-id: 'voice.common[33]'}
      voice_common_34: {pos: 74, type: u1, -orig-id: 'voice.common[34]'}
      voice_common_35: {pos: 75, type: u1, -orig-id: 'voice.common[35]'}
      voice_common_36: {pos: 76, type: u1, -orig-id: 'voice.common[36]'}
      voice_common_extra_0: {pos: 77, type: u1, -orig-id: 'voice.commonExtra[0]'}
  drum_voice_common:
    doc: Drum voice common.
    seq:
      - id: data
        size: 72
    instances:
      voice_name: {pos: 0, size: 20, type: str, encoding: ISO-8859-1, terminator: 0, -orig-id: 'voice.name'}
      voice_common_0: {pos: 24, type: u1, -orig-id: 'voice.common[0]'}
      voice_common_1: {pos: 25, type: u1, -orig-id: 'voice.common[1]'}
      voice_common_4: {value: 'data[30] & 0x0f', -orig-id: 'voice.common[4]'}
      voice_common_3: {value: 'data[30] >> 4', -orig-id: 'voice.common[3]'}
      voice_common_5: {pos: 31, type: u1, -orig-id: 'voice.common[5]'}
      voice_common_6: {pos: 32, type: u1, -orig-id: 'voice.common[6]'}
      voice_common_7: {pos: 33, type: u1, -orig-id: 'voice.common[7]'}
      voice_common_8: {pos: 34, type: u1, -orig-id: 'voice.common[8]'}
      voice_common_9: {pos: 35, type: u1, -orig-id: 'voice.common[9]'}
      voice_common_10: {pos: 36, type: u1, -orig-id: 'voice.common[10]'}
      voice_common_11: {pos: 37, type: u1, -orig-id: 'voice.common[11]'}
      voice_common_12: {pos: 38, type: u1, -orig-id: 'voice.common[12]'}
      voice_common_13: {pos: 40, type: u1, -orig-id: 'voice.common[13]'}
      voice_common_14: {pos: 41, type: u1, -orig-id: 'voice.common[14]'}
      voice_common_15: {pos: 42, type: u1, -orig-id: 'voice.common[15]'}
      voice_common_16: {pos: 43, type: u1, -orig-id: 'voice.common[16]'}
      multi_part_0_extra_0: {value: '(data[44] << 7 | data[45]) & 0xff', -orig-id: 'multi.part[0].extra[0]'}
      multi_part_0_extra_2: {value: '(data[48] << 7 | data[49]) & 0xff', -orig-id: 'multi.part[0].extra[2]'}
      multi_part_0_extra_5: {value: '(data[52] << 7 | data[53]) & 0xff', -orig-id: 'multi.part[0].extra[5]'}
      multi_part_0_extra_1: {pos: 46, type: u1, -orig-id: 'multi.part[0].extra[1]'}
      multi_part_0_extra_3: {pos: 50, type: u1, -orig-id: 'multi.part[0].extra[3]'}
      multi_part_0_extra_4: {pos: 51, type: u1, -orig-id: 'multi.part[0].extra[4]'}
      multi_part_0_extra_6: {pos: 54, type: u1, -orig-id: 'multi.part[0].extra[6]'}
      voice_common_17: {pos: 56, type: u1, -orig-id: 'voice.common[17]'}
      voice_common_18: {pos: 57, type: u1, -orig-id: 'voice.common[18]'}
      voice_common_19: {pos: 58, type: u1, -orig-id: 'voice.common[19]'}
      voice_common_20: {pos: 59, type: u1, -orig-id: 'voice.common[20]'}
      voice_common_23: {pos: 63, type: u1, -orig-id: 'voice.common[23]'}
      voice_common_28: {pos: 65, type: u1, -orig-id: 'voice.common[28]'}
      voice_common_29: {pos: 66, type: u1, -orig-id: 'voice.common[29]'}
      voice_common_35: {pos: 67, type: u1, -orig-id: 'voice.common[35]'}
      voice_common_36: {pos: 68, type: u1, -orig-id: 'voice.common[36]'}
      voice_common_extra_0: {pos: 69, type: u1, -orig-id: 'voice.commonExtra[0]'}
      voice_common_37: {pos: 70, type: u1, -orig-id: 'voice.common[37]'}
      voice_common_38: {pos: 71, type: u1, -orig-id: 'voice.common[38]'}
  reverb:
    doc: Reverb.
    seq:
      - id: data
        size: 38
    instances:
      multi_reverb_0: {pos: 0, type: u1, -orig-id: 'multi.reverb[0]'}
      multi_reverb_1: {pos: 1, type: u1, -orig-id: 'multi.reverb[1]'}
      multi_reverb_4: {pos: 2, type: u1, -orig-id: 'multi.reverb[4]'}
      multi_reverb_5: {value: 'data[4] << 7 | data[5]', -orig-id: 'multi.reverb[5]'}
      multi_reverb_6: {value: 'data[6] << 7 | data[7]', -orig-id: 'multi.reverb[6]'}
      multi_reverb_7: {value: 'data[8] << 7 | data[9]', -orig-id: 'multi.reverb[7]'}
      multi_reverb_8: {value: 'data[10] << 7 | data[11]', -orig-id: 'multi.reverb[8]'}
      multi_reverb_9: {value: 'data[12] << 7 | data[13]', -orig-id: 'multi.reverb[9]'}
      multi_reverb_10: {value: 'data[14] << 7 | data[15]', -orig-id: 'multi.reverb[10]'}
      multi_reverb_11: {value: 'data[16] << 7 | data[17]', -orig-id: 'multi.reverb[11]'}
      multi_reverb_12: {value: 'data[18] << 7 | data[19]', -orig-id: 'multi.reverb[12]'}
      multi_reverb_13: {value: 'data[20] << 7 | data[21]', -orig-id: 'multi.reverb[13]'}
      multi_reverb_14: {value: 'data[22] << 7 | data[23]', -orig-id: 'multi.reverb[14]'}
      multi_reverb_15: {value: 'data[24] << 7 | data[25]', -orig-id: 'multi.reverb[15]'}
      multi_reverb_16: {value: 'data[26] << 7 | data[27]', -orig-id: 'multi.reverb[16]'}
      multi_reverb_17: {value: 'data[28] << 7 | data[29]', -orig-id: 'multi.reverb[17]'}
      multi_reverb_18: {value: 'data[30] << 7 | data[31]', -orig-id: 'multi.reverb[18]'}
      multi_reverb_19: {value: 'data[32] << 7 | data[33]', -orig-id: 'multi.reverb[19]'}
      multi_reverb_20: {value: 'data[34] << 7 | data[35]', -orig-id: 'multi.reverb[20]'}
      multi_reverb_settings_0: {pos: 36, type: u1, -orig-id: 'multi.reverbSettings[0]'}
      multi_reverb_settings_1: {pos: 37, type: u1, -orig-id: 'multi.reverbSettings[1]'}
  chorus:
    doc: Chorus.
    seq:
      - id: data
        size: 40
    instances:
      multi_chorus_0: {pos: 0, type: u1, -orig-id: 'multi.chorus[0]'}
      multi_chorus_1: {pos: 1, type: u1, -orig-id: 'multi.chorus[1]'}
      multi_chorus_4: {pos: 2, type: u1, -orig-id: 'multi.chorus[4]'}
      multi_chorus_5: {value: 'data[4] << 7 | data[5]', -orig-id: 'multi.chorus[5]'}
      multi_chorus_6: {value: 'data[6] << 7 | data[7]', -orig-id: 'multi.chorus[6]'}
      multi_chorus_7: {value: 'data[8] << 7 | data[9]', -orig-id: 'multi.chorus[7]'}
      multi_chorus_8: {value: 'data[10] << 7 | data[11]', -orig-id: 'multi.chorus[8]'}
      multi_chorus_9: {value: 'data[12] << 7 | data[13]', -orig-id: 'multi.chorus[9]'}
      multi_chorus_10: {value: 'data[14] << 7 | data[15]', -orig-id: 'multi.chorus[10]'}
      multi_chorus_11: {value: 'data[16] << 7 | data[17]', -orig-id: 'multi.chorus[11]'}
      multi_chorus_12: {value: 'data[18] << 7 | data[19]', -orig-id: 'multi.chorus[12]'}
      multi_chorus_13: {value: 'data[20] << 7 | data[21]', -orig-id: 'multi.chorus[13]'}
      multi_chorus_14: {value: 'data[22] << 7 | data[23]', -orig-id: 'multi.chorus[14]'}
      multi_chorus_15: {value: 'data[24] << 7 | data[25]', -orig-id: 'multi.chorus[15]'}
      multi_chorus_16: {value: 'data[26] << 7 | data[27]', -orig-id: 'multi.chorus[16]'}
      multi_chorus_17: {value: 'data[28] << 7 | data[29]', -orig-id: 'multi.chorus[17]'}
      multi_chorus_18: {value: 'data[30] << 7 | data[31]', -orig-id: 'multi.chorus[18]'}
      multi_chorus_19: {value: 'data[32] << 7 | data[33]', -orig-id: 'multi.chorus[19]'}
      multi_chorus_20: {value: 'data[34] << 7 | data[35]', -orig-id: 'multi.chorus[20]'}
      multi_chorus_settings_0: {pos: 36, type: u1, -orig-id: 'multi.chorusSettings[0]'}
      multi_chorus_settings_1: {pos: 37, type: u1, -orig-id: 'multi.chorusSettings[1]'}
      multi_chorus_settings_2: {pos: 38, type: u1, -orig-id: 'multi.chorusSettings[2]'}
  insertion_effect_a_of_a_voice:
    doc: Insertion effect A of a voice.
    seq:
      - id: data
        size: 36
    instances:
      voice_insertion_a_0: {pos: 0, type: u1, -orig-id: 'voice.insertionA[0]'}
      voice_insertion_a_1: {pos: 1, type: u1, -orig-id: 'voice.insertionA[1]'}
      voice_insertion_a_4: {pos: 2, type: u1, -orig-id: 'voice.insertionA[4]'}
      voice_insertion_a_5: {value: 'data[4] << 7 | data[5]', -orig-id: 'voice.insertionA[5]'}
      voice_insertion_a_6: {value: 'data[6] << 7 | data[7]', -orig-id: 'voice.insertionA[6]'}
      voice_insertion_a_7: {value: 'data[8] << 7 | data[9]', -orig-id: 'voice.insertionA[7]'}
      voice_insertion_a_8: {value: 'data[10] << 7 | data[11]', -orig-id: 'voice.insertionA[8]'}
      voice_insertion_a_9: {value: 'data[12] << 7 | data[13]', -orig-id: 'voice.insertionA[9]'}
      voice_insertion_a_10: {value: 'data[14] << 7 | data[15]', -orig-id: 'voice.insertionA[10]'}
      voice_insertion_a_11: {value: 'data[16] << 7 | data[17]', -orig-id: 'voice.insertionA[11]'}
      voice_insertion_a_12: {value: 'data[18] << 7 | data[19]', -orig-id: 'voice.insertionA[12]'}
      voice_insertion_a_13: {value: 'data[20] << 7 | data[21]', -orig-id: 'voice.insertionA[13]'}
      voice_insertion_a_14: {value: 'data[22] << 7 | data[23]', -orig-id: 'voice.insertionA[14]'}
      voice_insertion_a_15: {value: 'data[24] << 7 | data[25]', -orig-id: 'voice.insertionA[15]'}
      voice_insertion_a_16: {value: 'data[26] << 7 | data[27]', -orig-id: 'voice.insertionA[16]'}
      voice_insertion_a_17: {value: 'data[28] << 7 | data[29]', -orig-id: 'voice.insertionA[17]'}
      voice_insertion_a_18: {value: 'data[30] << 7 | data[31]', -orig-id: 'voice.insertionA[18]'}
      voice_insertion_a_19: {value: 'data[32] << 7 | data[33]', -orig-id: 'voice.insertionA[19]'}
      voice_insertion_a_20: {value: 'data[34] << 7 | data[35]', -orig-id: 'voice.insertionA[20]'}
  insertion_effect_b_of_a_voice:
    doc: Insertion effect B of a voice.
    seq:
      - id: data
        size: 36
    instances:
      voice_insertion_b_0: {pos: 0, type: u1, -orig-id: 'voice.insertionB[0]'}
      voice_insertion_b_1: {pos: 1, type: u1, -orig-id: 'voice.insertionB[1]'}
      voice_insertion_b_4: {pos: 2, type: u1, -orig-id: 'voice.insertionB[4]'}
      voice_insertion_b_5: {value: 'data[4] << 7 | data[5]', -orig-id: 'voice.insertionB[5]'}
      voice_insertion_b_6: {value: 'data[6] << 7 | data[7]', -orig-id: 'voice.insertionB[6]'}
      voice_insertion_b_7: {value: 'data[8] << 7 | data[9]', -orig-id: 'voice.insertionB[7]'}
      voice_insertion_b_8: {value: 'data[10] << 7 | data[11]', -orig-id: 'voice.insertionB[8]'}
      voice_insertion_b_9: {value: 'data[12] << 7 | data[13]', -orig-id: 'voice.insertionB[9]'}
      voice_insertion_b_10: {value: 'data[14] << 7 | data[15]', -orig-id: 'voice.insertionB[10]'}
      voice_insertion_b_11: {value: 'data[16] << 7 | data[17]', -orig-id: 'voice.insertionB[11]'}
      voice_insertion_b_12: {value: 'data[18] << 7 | data[19]', -orig-id: 'voice.insertionB[12]'}
      voice_insertion_b_13: {value: 'data[20] << 7 | data[21]', -orig-id: 'voice.insertionB[13]'}
      voice_insertion_b_14: {value: 'data[22] << 7 | data[23]', -orig-id: 'voice.insertionB[14]'}
      voice_insertion_b_15: {value: 'data[24] << 7 | data[25]', -orig-id: 'voice.insertionB[15]'}
      voice_insertion_b_16: {value: 'data[26] << 7 | data[27]', -orig-id: 'voice.insertionB[16]'}
      voice_insertion_b_17: {value: 'data[28] << 7 | data[29]', -orig-id: 'voice.insertionB[17]'}
      voice_insertion_b_18: {value: 'data[30] << 7 | data[31]', -orig-id: 'voice.insertionB[18]'}
      voice_insertion_b_19: {value: 'data[32] << 7 | data[33]', -orig-id: 'voice.insertionB[19]'}
      voice_insertion_b_20: {value: 'data[34] << 7 | data[35]', -orig-id: 'voice.insertionB[20]'}
  insertion_effect_l_of_a_voice:
    doc: Insertion effect L of a voice.
    seq:
      - id: data
        size: 68
    instances:
      voice_insertion_l_0: {pos: 0, type: u1, -orig-id: 'voice.insertionL[0]'}
      voice_insertion_l_1: {pos: 1, type: u1, -orig-id: 'voice.insertionL[1]'}
      voice_insertion_l_4: {pos: 2, type: u1, -orig-id: 'voice.insertionL[4]'}
      voice_insertion_l_5: {value: 'data[4] << 7 | data[5]', -orig-id: 'voice.insertionL[5]'}
      voice_insertion_l_6: {value: 'data[6] << 7 | data[7]', -orig-id: 'voice.insertionL[6]'}
      voice_insertion_l_7: {value: 'data[8] << 7 | data[9]', -orig-id: 'voice.insertionL[7]'}
      voice_insertion_l_8: {value: 'data[10] << 7 | data[11]', -orig-id: 'voice.insertionL[8]'}
      voice_insertion_l_9: {value: 'data[12] << 7 | data[13]', -orig-id: 'voice.insertionL[9]'}
      voice_insertion_l_10: {value: 'data[14] << 7 | data[15]', -orig-id: 'voice.insertionL[10]'}
      voice_insertion_l_11: {value: 'data[16] << 7 | data[17]', -orig-id: 'voice.insertionL[11]'}
      voice_insertion_l_12: {value: 'data[18] << 7 | data[19]', -orig-id: 'voice.insertionL[12]'}
      voice_insertion_l_13: {value: 'data[20] << 7 | data[21]', -orig-id: 'voice.insertionL[13]'}
      voice_insertion_l_14: {value: 'data[22] << 7 | data[23]', -orig-id: 'voice.insertionL[14]'}
      voice_insertion_l_15: {value: 'data[24] << 7 | data[25]', -orig-id: 'voice.insertionL[15]'}
      voice_insertion_l_16: {value: 'data[26] << 7 | data[27]', -orig-id: 'voice.insertionL[16]'}
      voice_insertion_l_17: {value: 'data[28] << 7 | data[29]', -orig-id: 'voice.insertionL[17]'}
      voice_insertion_l_18: {value: 'data[30] << 7 | data[31]', -orig-id: 'voice.insertionL[18]'}
      voice_insertion_l_19: {value: 'data[32] << 7 | data[33]', -orig-id: 'voice.insertionL[19]'}
      voice_insertion_l_20: {value: 'data[34] << 7 | data[35]', -orig-id: 'voice.insertionL[20]'}
      voice_insertion_l_21: {value: 'data[36] << 7 | data[37]', -orig-id: 'voice.insertionL[21]'}
      voice_insertion_l_22: {value: 'data[38] << 7 | data[39]', -orig-id: 'voice.insertionL[22]'}
      voice_insertion_l_23: {value: 'data[40] << 7 | data[41]', -orig-id: 'voice.insertionL[23]'}
      voice_insertion_l_24: {value: 'data[42] << 7 | data[43]', -orig-id: 'voice.insertionL[24]'}
      voice_insertion_l_25: {value: 'data[44] << 7 | data[45]', -orig-id: 'voice.insertionL[25]'}
      voice_insertion_l_26: {value: 'data[46] << 7 | data[47]', -orig-id: 'voice.insertionL[26]'}
      voice_insertion_l_27: {value: 'data[48] << 7 | data[49]', -orig-id: 'voice.insertionL[27]'}
      voice_insertion_l_28: {value: 'data[50] << 7 | data[51]', -orig-id: 'voice.insertionL[28]'}
      voice_insertion_l_29: {value: 'data[52] << 7 | data[53]', -orig-id: 'voice.insertionL[29]'}
      voice_insertion_l_30: {value: 'data[54] << 7 | data[55]', -orig-id: 'voice.insertionL[30]'}
      voice_insertion_l_31: {value: 'data[56] << 7 | data[57]', -orig-id: 'voice.insertionL[31]'}
      voice_insertion_l_32: {value: 'data[58] << 7 | data[59]', -orig-id: 'voice.insertionL[32]'}
      voice_insertion_l_33: {value: 'data[60] << 7 | data[61]', -orig-id: 'voice.insertionL[33]'}
      voice_insertion_l_34: {value: 'data[62] << 7 | data[63]', -orig-id: 'voice.insertionL[34]'}
      voice_insertion_l_35: {value: 'data[64] << 7 | data[65]', -orig-id: 'voice.insertionL[35]'}
      voice_insertion_l_36: {value: 'data[66] << 7 | data[67]', -orig-id: 'voice.insertionL[36]'}
  normal_voice_controllers:
    doc: Normal voice controllers.
    seq:
      - id: data
        size: 60
    instances:
      voice_common_39: {pos: 1, type: u1, -orig-id: 'voice.common[39]'}
      voice_common_40: {value: '(data[2] << 7 | data[3]) & 0xff', -orig-id: 'voice.common[40]'}
      voice_common_41: {pos: 0, type: u1, -orig-id: 'voice.common[41]'}
      voice_common_42: {pos: 5, type: u1, -orig-id: 'voice.common[42]'}
      voice_common_43: {value: '(data[6] << 7 | data[7]) & 0xff', -orig-id: 'voice.common[43]'}
      voice_common_44: {pos: 4, type: u1, -orig-id: 'voice.common[44]'}
      voice_common_45: {pos: 9, type: u1, -orig-id: 'voice.common[45]'}
      voice_common_46: {value: '(data[10] << 7 | data[11]) & 0xff', -orig-id: 'voice.common[46]'}
      voice_common_47: {pos: 8, type: u1, -orig-id: 'voice.common[47]'}
      voice_common_48: {pos: 13, type: u1, -orig-id: 'voice.common[48]'}
      voice_common_49: {value: '(data[14] << 7 | data[15]) & 0xff', -orig-id: 'voice.common[49]'}
      voice_common_50: {pos: 12, type: u1, -orig-id: 'voice.common[50]'}
      voice_common_51: {pos: 17, type: u1, -orig-id: 'voice.common[51]'}
      voice_common_52: {value: '(data[18] << 7 | data[19]) & 0xff', -orig-id: 'voice.common[52]'}
      voice_common_53: {pos: 16, type: u1, -orig-id: 'voice.common[53]'}
      voice_common_54: {pos: 21, type: u1, -orig-id: 'voice.common[54]'}
      voice_common_55: {value: '(data[22] << 7 | data[23]) & 0xff', -orig-id: 'voice.common[55]'}
      voice_common_56: {pos: 20, type: u1, -orig-id: 'voice.common[56]'}
      voice_common_57: {pos: 24, type: u1, -orig-id: 'voice.common[57]'}
      voice_common_58: {pos: 25, type: u1, -orig-id: 'voice.common[58]'}
      voice_common_59: {pos: 26, type: u1, -orig-id: 'voice.common[59]'}
      voice_common_60: {pos: 27, type: u1, -orig-id: 'voice.common[60]'}
      voice_common_61: {pos: 28, type: u1, -orig-id: 'voice.common[61]'}
      voice_common_62: {pos: 29, type: u1, -orig-id: 'voice.common[62]'}
      voice_common_63: {pos: 30, type: u1, -orig-id: 'voice.common[63]'}
      voice_common_64: {pos: 31, type: u1, -orig-id: 'voice.common[64]'}
      voice_common_65: {pos: 32, type: u1, -orig-id: 'voice.common[65]'}
      voice_common_66: {pos: 33, type: u1, -orig-id: 'voice.common[66]'}
      voice_common_67: {pos: 34, type: u1, -orig-id: 'voice.common[67]'}
      voice_common_68: {pos: 36, type: u1, -orig-id: 'voice.common[68]'}
      voice_common_69: {pos: 35, type: u1, -orig-id: 'voice.common[69]'}
      voice_common_70: {pos: 38, type: u1, -orig-id: 'voice.common[70]'}
      voice_common_71: {pos: 37, type: u1, -orig-id: 'voice.common[71]'}
      voice_common_72: {pos: 40, type: u1, -orig-id: 'voice.common[72]'}
      voice_common_73: {pos: 39, type: u1, -orig-id: 'voice.common[73]'}
      voice_common_74: {pos: 41, type: u1, -orig-id: 'voice.common[74]'}
      voice_common_75: {pos: 42, type: u1, -orig-id: 'voice.common[75]'}
      voice_common_76: {pos: 43, type: u1, -orig-id: 'voice.common[76]'}
      voice_common_77: {pos: 44, type: u1, -orig-id: 'voice.common[77]'}
      voice_common_78: {pos: 45, type: u1, -orig-id: 'voice.common[78]'}
      voice_common_79: {pos: 46, type: u1, -orig-id: 'voice.common[79]'}
      voice_common_80: {pos: 47, type: u1, -orig-id: 'voice.common[80]'}
      voice_common_81: {pos: 48, type: u1, -orig-id: 'voice.common[81]'}
      voice_common_82: {pos: 49, type: u1, -orig-id: 'voice.common[82]'}
      voice_common_83: {pos: 50, type: u1, -orig-id: 'voice.common[83]'}
      voice_common_84: {pos: 51, type: u1, -orig-id: 'voice.common[84]'}
      voice_common_85: {pos: 52, type: u1, -orig-id: 'voice.common[85]'}
      voice_common_86: {pos: 53, type: u1, -orig-id: 'voice.common[86]'}
      voice_common_87: {pos: 54, type: u1, -orig-id: 'voice.common[87]'}
      voice_common_88: {pos: 55, type: u1, -orig-id: 'voice.common[88]'}
      voice_common_89: {pos: 56, type: u1, -orig-id: 'voice.common[89]'}
      voice_common_90: {pos: 57, type: u1, -orig-id: 'voice.common[90]'}
      voice_common_91: {pos: 58, type: u1, -orig-id: 'voice.common[91]'}
      voice_common_92: {pos: 59, type: u1, -orig-id: 'voice.common[92]'}
  drum_voice_controllers:
    doc: Drum voice controllers.
    seq:
      - id: data
        size: 24
    instances:
      voice_common_39: {pos: 1, type: u1, -orig-id: 'voice.common[39]'}
      voice_common_40: {value: '(data[2] << 7 | data[3]) & 0xff', -orig-id: 'voice.common[40]'}
      voice_common_41: {pos: 0, type: u1, -orig-id: 'voice.common[41]'}
      voice_common_42: {pos: 5, type: u1, -orig-id: 'voice.common[42]'}
      voice_common_43: {value: '(data[6] << 7 | data[7]) & 0xff', -orig-id: 'voice.common[43]'}
      voice_common_44: {pos: 4, type: u1, -orig-id: 'voice.common[44]'}
      voice_common_45: {pos: 9, type: u1, -orig-id: 'voice.common[45]'}
      voice_common_46: {value: '(data[10] << 7 | data[11]) & 0xff', -orig-id: 'voice.common[46]'}
      voice_common_47: {pos: 8, type: u1, -orig-id: 'voice.common[47]'}
      voice_common_48: {pos: 13, type: u1, -orig-id: 'voice.common[48]'}
      voice_common_49: {value: '(data[14] << 7 | data[15]) & 0xff', -orig-id: 'voice.common[49]'}
      voice_common_50: {pos: 12, type: u1, -orig-id: 'voice.common[50]'}
      voice_common_51: {pos: 17, type: u1, -orig-id: 'voice.common[51]'}
      voice_common_52: {value: '(data[18] << 7 | data[19]) & 0xff', -orig-id: 'voice.common[52]'}
      voice_common_53: {pos: 16, type: u1, -orig-id: 'voice.common[53]'}
      voice_common_54: {pos: 21, type: u1, -orig-id: 'voice.common[54]'}
      voice_common_55: {value: '(data[22] << 7 | data[23]) & 0xff', -orig-id: 'voice.common[55]'}
      voice_common_56: {pos: 20, type: u1, -orig-id: 'voice.common[56]'}
  arpeggio_of_a_voice:
    doc: Arpeggio of a voice.
    seq:
      - id: data
        size: 86
    instances:
      voice_arpeggio_common_6: {pos: 0, type: u1, -orig-id: 'voice.arpeggioCommon[6]'}
      voice_arpeggio_tempo_0: {value: 'data[2] << 7 | data[3]', -orig-id: 'voice.arpeggioTempo[0]'}
      voice_arpeggio_entry_0: {pos: 14, type: u1, -orig-id: 'voice.arpeggioEntry[0]'}
      voice_arpeggio_entry_3: {pos: 20, type: u1, -orig-id: 'voice.arpeggioEntry[3]'}
      voice_arpeggio_entry_4: {pos: 21, type: u1, -orig-id: 'voice.arpeggioEntry[4]'}
      voice_arpeggio_entry_5: {pos: 22, type: u1, -orig-id: 'voice.arpeggioEntry[5]'}
      voice_arpeggio_entry_6: {pos: 23, type: u1, -orig-id: 'voice.arpeggioEntry[6]'}
      voice_arpeggio_entry_7: {pos: 24, type: u1, -orig-id: 'voice.arpeggioEntry[7]'}
      voice_arpeggio_entry_8: {pos: 25, type: u1, -orig-id: 'voice.arpeggioEntry[8]'}
      voice_arpeggio_entry_9: {pos: 26, type: u1, -orig-id: 'voice.arpeggioEntry[9]'}
      voice_arpeggio_entry_10: {pos: 27, type: u1, -orig-id: 'voice.arpeggioEntry[10]'}
      voice_arpeggio_entry_11: {pos: 28, type: u1, -orig-id: 'voice.arpeggioEntry[11]'}
      voice_arpeggio_entry_12: {pos: 29, type: u1, -orig-id: 'voice.arpeggioEntry[12]'}
      voice_arpeggio_entry_13: {pos: 30, type: u1, -orig-id: 'voice.arpeggioEntry[13]'}
      voice_arpeggio_entry_14: {pos: 31, type: u1, -orig-id: 'voice.arpeggioEntry[14]'}
      voice_arpeggio_entry_15: {value: '(data[32] << 7 | data[33]) & 0xff', -orig-id: 'voice.arpeggioEntry[15]'}
      voice_arpeggio_entry_16: {value: '(data[34] << 7 | data[35]) & 0xff', -orig-id: 'voice.arpeggioEntry[16]'}
      voice_arpeggio_entry_17: {value: '(data[40] << 7 | data[41]) & 0xff', -orig-id: 'voice.arpeggioEntry[17]'}
      voice_arpeggio_entry_20: {pos: 42, type: u1, -orig-id: 'voice.arpeggioEntry[20]'}
      voice_arpeggio_entry_21: {pos: 43, type: u1, -orig-id: 'voice.arpeggioEntry[21]'}
      voice_arpeggio_entry_18: {pos: 44, type: u1, -orig-id: 'voice.arpeggioEntry[18]'}
      voice_arpeggio_entry_19: {pos: 45, type: u1, -orig-id: 'voice.arpeggioEntry[19]'}
      voice_arpeggio_entry_22: {pos: 46, type: u1, -orig-id: 'voice.arpeggioEntry[22]'}
      voice_arpeggio_entry_23: {pos: 47, type: u1, -orig-id: 'voice.arpeggioEntry[23]'}
      voice_arpeggio_entry_24: {pos: 48, type: u1, -orig-id: 'voice.arpeggioEntry[24]'}
      voice_arpeggio_entry_25: {pos: 49, type: u1, -orig-id: 'voice.arpeggioEntry[25]'}
      voice_arpeggio_entry_26: {value: '(data[50] << 7 | data[51]) & 0xff', -orig-id: 'voice.arpeggioEntry[26]'}
      voice_arpeggio_entry_27: {value: '(data[52] << 7 | data[53]) & 0xff', -orig-id: 'voice.arpeggioEntry[27]'}
      voice_arpeggio_entry_28: {value: '(data[54] << 7 | data[55]) & 0xff', -orig-id: 'voice.arpeggioEntry[28]'}
      voice_arpeggio_entry_29: {value: '(data[56] << 7 | data[57]) & 0xff', -orig-id: 'voice.arpeggioEntry[29]'}
      voice_arpeggio_entry_30: {value: '(data[58] << 7 | data[59]) & 0xff', -orig-id: 'voice.arpeggioEntry[30]'}
      voice_arpeggio_entry_31: {value: '(data[60] << 7 | data[61]) & 0xff', -orig-id: 'voice.arpeggioEntry[31]'}
      voice_arpeggio_entry_32: {value: '(data[62] << 7 | data[63]) & 0xff', -orig-id: 'voice.arpeggioEntry[32]'}
      voice_arpeggio_entry_33: {value: '(data[64] << 7 | data[65]) & 0xff', -orig-id: 'voice.arpeggioEntry[33]'}
      voice_arpeggio_entry_34: {value: '(data[66] << 7 | data[67]) & 0xff', -orig-id: 'voice.arpeggioEntry[34]'}
      voice_arpeggio_entry_35: {value: '(data[68] << 7 | data[69]) & 0xff', -orig-id: 'voice.arpeggioEntry[35]'}
      voice_arpeggio_entry_36: {value: '(data[70] << 7 | data[71]) & 0xff', -orig-id: 'voice.arpeggioEntry[36]'}
      voice_arpeggio_entry_37: {value: '(data[72] << 7 | data[73]) & 0xff', -orig-id: 'voice.arpeggioEntry[37]'}
      voice_arpeggio_six_0: {value: 'data[74] << 7 | data[75]', -orig-id: 'voice.arpeggioSix[0]'}
      voice_arpeggio_six_1: {value: 'data[76] << 7 | data[77]', -orig-id: 'voice.arpeggioSix[1]'}
      voice_arpeggio_six_2: {value: 'data[78] << 7 | data[79]', -orig-id: 'voice.arpeggioSix[2]'}
      voice_arpeggio_six_3: {value: 'data[80] << 7 | data[81]', -orig-id: 'voice.arpeggioSix[3]'}
      voice_arpeggio_six_4: {value: 'data[82] << 7 | data[83]', -orig-id: 'voice.arpeggioSix[4]'}
      voice_arpeggio_six_5: {value: 'data[84] << 7 | data[85]', -orig-id: 'voice.arpeggioSix[5]'}
  oscillator_of_an_element:
    doc: Oscillator of an element.
    params:
      - id: i
        type: u1
        doc: Which of them, from 0.
    seq:
      - id: data
        size: 88
    instances:
      voice_element_params_0: {pos: 0, type: u1, -orig-id: 'voice.element[i].params[0]'}
      voice_element_params_1: {pos: 1, type: u1, -orig-id: 'voice.element[i].params[1]'}
      voice_element_params_2: {pos: 4, type: u1, -orig-id: 'voice.element[i].params[2]'}
      voice_element_wave_0: {value: 'data[2] << 7 | data[3]', -orig-id: 'voice.element[i].wave[0]'}
      voice_element_params_6: {pos: 5, type: u1, -orig-id: 'voice.element[i].params[6]'}
      voice_element_params_7: {pos: 6, type: u1, -orig-id: 'voice.element[i].params[7]'}
      voice_element_params_8: {pos: 7, type: u1, -orig-id: 'voice.element[i].params[8]'}
      voice_element_params_9: {pos: 8, type: u1, -orig-id: 'voice.element[i].params[9]'}
      voice_element_params_10: {pos: 9, type: u1, -orig-id: 'voice.element[i].params[10]'}
      voice_element_params_11: {pos: 10, type: u1, -orig-id: 'voice.element[i].params[11]'}
      voice_element_params_12: {pos: 11, type: u1, -orig-id: 'voice.element[i].params[12]'}
      voice_element_params_13: {pos: 12, type: u1, -orig-id: 'voice.element[i].params[13]'}
      voice_element_params_14: {pos: 13, type: u1, -orig-id: 'voice.element[i].params[14]'}
      voice_element_params_15: {pos: 14, type: u1, -orig-id: 'voice.element[i].params[15]'}
      voice_element_params_16: {pos: 15, type: u1, -orig-id: 'voice.element[i].params[16]'}
      voice_element_params_17: {pos: 16, type: u1, -orig-id: 'voice.element[i].params[17]'}
      voice_element_params_20: {pos: 17, type: u1, -orig-id: 'voice.element[i].params[20]'}
      voice_element_params_22: {value: '(data[19] & 0x01) != 0 ? 1 : 0', -orig-id: 'voice.element[i].params[22]'}
      voice_element_params_23: {value: '(data[19] & 0x02) != 0 ? 1 : 0', -orig-id: 'voice.element[i].params[23]'}
      voice_element_params_24: {value: '(data[19] & 0x04) != 0 ? 1 : 0', -orig-id: 'voice.element[i].params[24]'}
      voice_element_params_25: {value: '(data[19] & 0x08) != 0 ? 1 : 0', -orig-id: 'voice.element[i].params[25]'}
      voice_element_params_26: {value: '(data[19] & 0x10) != 0 ? 1 : 0', -orig-id: 'voice.element[i].params[26]'}
      voice_element_params_27: {value: '(data[19] & 0x20) != 0 ? 1 : 0', -orig-id: 'voice.element[i].params[27]'}
      voice_element_params_28: {value: '(data[21] & 0x01) != 0 ? 1 : 0', -orig-id: 'voice.element[i].params[28]'}
      voice_element_params_29: {value: '(data[21] & 0x02) != 0 ? 1 : 0', -orig-id: 'voice.element[i].params[29]'}
      voice_element_params_30: {value: '(data[21] & 0x04) != 0 ? 1 : 0', -orig-id: 'voice.element[i].params[30]'}
      voice_element_params_31: {pos: 22, type: u1, -orig-id: 'voice.element[i].params[31]'}
      voice_element_params_32: {pos: 23, type: u1, -orig-id: 'voice.element[i].params[32]'}
      voice_element_params_33: {pos: 26, type: u1, -orig-id: 'voice.element[i].params[33]'}
      voice_element_params_34: {pos: 27, type: u1, -orig-id: 'voice.element[i].params[34]'}
      voice_element_params_35: {pos: 28, type: u1, -orig-id: 'voice.element[i].params[35]'}
      voice_element_params_36: {pos: 29, type: u1, -orig-id: 'voice.element[i].params[36]'}
      voice_element_params_37: {pos: 30, type: u1, -orig-id: 'voice.element[i].params[37]'}
      voice_element_params_38: {pos: 31, type: u1, -orig-id: 'voice.element[i].params[38]'}
      voice_element_params_39: {pos: 32, type: u1, -orig-id: 'voice.element[i].params[39]'}
      voice_element_params_40: {pos: 33, type: u1, -orig-id: 'voice.element[i].params[40]'}
      voice_element_params_41: {pos: 34, type: u1, -orig-id: 'voice.element[i].params[41]'}
      voice_element_params_42: {pos: 35, type: u1, -orig-id: 'voice.element[i].params[42]'}
      voice_element_params_43: {pos: 36, type: u1, -orig-id: 'voice.element[i].params[43]'}
      voice_element_params_44: {pos: 37, type: u1, -orig-id: 'voice.element[i].params[44]'}
      voice_element_params_45: {pos: 38, type: u1, -orig-id: 'voice.element[i].params[45]'}
      voice_element_params_46: {pos: 40, type: u1, -orig-id: 'voice.element[i].params[46]'}
      voice_element_params_47: {pos: 41, type: u1, -orig-id: 'voice.element[i].params[47]'}
      voice_element_params_48: {pos: 42, type: u1, -orig-id: 'voice.element[i].params[48]'}
      voice_element_params_49: {pos: 43, type: u1, -orig-id: 'voice.element[i].params[49]'}
      voice_element_params_51: {pos: 44, type: u1, -orig-id: 'voice.element[i].params[51]'}
      voice_element_params_52: {pos: 45, type: u1, -orig-id: 'voice.element[i].params[52]'}
      voice_element_params_53: {pos: 46, type: u1, -orig-id: 'voice.element[i].params[53]'}
      voice_element_params_54: {pos: 47, type: u1, -orig-id: 'voice.element[i].params[54]'}
      voice_element_params_55: {value: '(data[48] << 7 | data[49]) & 0xff', -orig-id: 'voice.element[i].params[55]'}
      voice_element_params_56: {value: '(data[50] << 7 | data[51]) & 0xff', -orig-id: 'voice.element[i].params[56]'}
      voice_element_params_57: {value: '(data[52] << 7 | data[53]) & 0xff', -orig-id: 'voice.element[i].params[57]'}
      voice_element_params_58: {value: '(data[54] << 7 | data[55]) & 0xff', -orig-id: 'voice.element[i].params[58]'}
      voice_element_params_59: {pos: 56, type: u1, -orig-id: 'voice.element[i].params[59]'}
      voice_element_params_50: {pos: 57, type: u1, -orig-id: 'voice.element[i].params[50]'}
      voice_element_params_60: {pos: 58, type: u1, -orig-id: 'voice.element[i].params[60]'}
      voice_element_params_61: {pos: 59, type: u1, -orig-id: 'voice.element[i].params[61]'}
      voice_element_params_62: {pos: 60, type: u1, -orig-id: 'voice.element[i].params[62]'}
      voice_element_params_63: {pos: 61, type: u1, -orig-id: 'voice.element[i].params[63]'}
      voice_element_params_64: {pos: 62, type: u1, -orig-id: 'voice.element[i].params[64]'}
      voice_element_params_65: {pos: 63, type: u1, -orig-id: 'voice.element[i].params[65]'}
      voice_element_params_66: {pos: 64, type: u1, -orig-id: 'voice.element[i].params[66]'}
      voice_element_params_67: {pos: 65, type: u1, -orig-id: 'voice.element[i].params[67]'}
      voice_element_params_68: {pos: 66, type: u1, -orig-id: 'voice.element[i].params[68]'}
      voice_element_params_69: {pos: 67, type: u1, -orig-id: 'voice.element[i].params[69]'}
      voice_element_params_70: {pos: 68, type: u1, -orig-id: 'voice.element[i].params[70]'}
      voice_element_params_71: {pos: 69, type: u1, -orig-id: 'voice.element[i].params[71]'}
      voice_element_params_72: {value: '(data[70] << 7 | data[71]) & 0xff', -orig-id: 'voice.element[i].params[72]'}
      voice_element_params_73: {value: '(data[72] << 7 | data[73]) & 0xff', -orig-id: 'voice.element[i].params[73]'}
      voice_element_params_74: {value: '(data[74] << 7 | data[75]) & 0xff', -orig-id: 'voice.element[i].params[74]'}
      voice_element_params_75: {value: '(data[76] << 7 | data[77]) & 0xff', -orig-id: 'voice.element[i].params[75]'}
      voice_element_params_76: {value: '(data[78] << 7 | data[79]) & 0xff', -orig-id: 'voice.element[i].params[76]'}
      voice_element_params_77: {pos: 80, type: u1, -orig-id: 'voice.element[i].params[77]'}
      voice_element_params_78: {pos: 81, type: u1, -orig-id: 'voice.element[i].params[78]'}
      voice_element_params_79: {pos: 82, type: u1, -orig-id: 'voice.element[i].params[79]'}
      voice_element_params_80: {pos: 83, type: u1, -orig-id: 'voice.element[i].params[80]'}
      voice_element_params_81: {pos: 84, type: u1, -orig-id: 'voice.element[i].params[81]'}
      voice_element_params_82: {pos: 85, type: u1, -orig-id: 'voice.element[i].params[82]'}
      voice_element_params_83: {pos: 86, type: u1, -orig-id: 'voice.element[i].params[83]'}
  filter_of_an_element:
    doc: Filter of an element.
    params:
      - id: i
        type: u1
        doc: Which of them, from 0.
    seq:
      - id: data
        size: 74
    instances:
      voice_element_params_84: {pos: 0, type: u1, -orig-id: 'voice.element[i].params[84]'}
      voice_element_params_85: {value: '(data[2] << 7 | data[3]) & 0xff', -orig-id: 'voice.element[i].params[85]'}
      voice_element_params_86: {pos: 4, type: u1, -orig-id: 'voice.element[i].params[86]'}
      voice_element_params_87: {pos: 5, type: u1, -orig-id: 'voice.element[i].params[87]'}
      voice_element_params_88: {pos: 6, type: u1, -orig-id: 'voice.element[i].params[88]'}
      voice_element_params_89: {value: '(data[8] << 7 | data[9]) & 0xff', -orig-id: 'voice.element[i].params[89]'}
      voice_element_params_90: {value: '(data[10] << 7 | data[11]) & 0xff', -orig-id: 'voice.element[i].params[90]'}
      voice_element_params_91: {value: '(data[12] << 7 | data[13]) & 0xff', -orig-id: 'voice.element[i].params[91]'}
      voice_element_params_92: {pos: 14, type: u1, -orig-id: 'voice.element[i].params[92]'}
      voice_element_params_93: {pos: 15, type: u1, -orig-id: 'voice.element[i].params[93]'}
      voice_element_params_94: {pos: 16, type: u1, -orig-id: 'voice.element[i].params[94]'}
      voice_element_params_95: {pos: 17, type: u1, -orig-id: 'voice.element[i].params[95]'}
      voice_element_params_96: {pos: 18, type: u1, -orig-id: 'voice.element[i].params[96]'}
      voice_element_params_97: {value: '(data[20] << 7 | data[21]) & 0xff', -orig-id: 'voice.element[i].params[97]'}
      voice_element_params_98: {value: '(data[22] << 7 | data[23]) & 0xff', -orig-id: 'voice.element[i].params[98]'}
      voice_element_params_99: {value: '(data[24] << 7 | data[25]) & 0xff', -orig-id: 'voice.element[i].params[99]'}
      voice_element_params_100: {value: '(data[26] << 7 | data[27]) & 0xff', -orig-id: 'voice.element[i].params[100]'}
      voice_element_params_101: {value: '(data[28] << 7 | data[29]) & 0xff', -orig-id: 'voice.element[i].params[101]'}
      voice_element_params_102: {pos: 30, type: u1, -orig-id: 'voice.element[i].params[102]'}
      voice_element_params_103: {pos: 31, type: u1, -orig-id: 'voice.element[i].params[103]'}
      voice_element_params_104: {pos: 32, type: u1, -orig-id: 'voice.element[i].params[104]'}
      voice_element_params_105: {pos: 33, type: u1, -orig-id: 'voice.element[i].params[105]'}
      voice_element_params_106: {pos: 34, type: u1, -orig-id: 'voice.element[i].params[106]'}
      voice_element_params_107: {pos: 35, type: u1, -orig-id: 'voice.element[i].params[107]'}
      voice_element_params_108: {pos: 36, type: u1, -orig-id: 'voice.element[i].params[108]'}
      voice_element_params_109: {pos: 37, type: u1, -orig-id: 'voice.element[i].params[109]'}
      voice_element_params_110: {pos: 38, type: u1, -orig-id: 'voice.element[i].params[110]'}
      voice_element_params_111: {pos: 39, type: u1, -orig-id: 'voice.element[i].params[111]'}
      voice_element_params_112: {pos: 40, type: u1, -orig-id: 'voice.element[i].params[112]'}
      voice_element_params_113: {value: '(data[42] << 7 | data[43]) & 0xff', -orig-id: 'voice.element[i].params[113]'}
      voice_element_params_114: {value: '(data[44] << 7 | data[45]) & 0xff', -orig-id: 'voice.element[i].params[114]'}
      voice_element_params_115: {value: '(data[46] << 7 | data[47]) & 0xff', -orig-id: 'voice.element[i].params[115]'}
      voice_element_params_116: {value: '(data[48] << 7 | data[49]) & 0xff', -orig-id: 'voice.element[i].params[116]'}
      voice_element_params_117: {pos: 50, type: u1, -orig-id: 'voice.element[i].params[117]'}
      voice_element_params_118: {pos: 51, type: u1, -orig-id: 'voice.element[i].params[118]'}
      voice_element_params_119: {pos: 52, type: u1, -orig-id: 'voice.element[i].params[119]'}
      voice_element_params_120: {pos: 53, type: u1, -orig-id: 'voice.element[i].params[120]'}
      voice_element_params_121: {value: '(data[54] << 7 | data[55]) & 0xff', -orig-id: 'voice.element[i].params[121]'}
      voice_element_params_122: {pos: 56, type: u1, -orig-id: 'voice.element[i].params[122]'}
      voice_element_params_123: {value: '(data[58] << 7 | data[59]) & 0xff', -orig-id: 'voice.element[i].params[123]'}
      voice_element_params_124: {pos: 60, type: u1, -orig-id: 'voice.element[i].params[124]'}
      voice_element_params_125: {pos: 62, type: u1, -orig-id: 'voice.element[i].params[125]'}
      voice_element_params_126: {pos: 63, type: u1, -orig-id: 'voice.element[i].params[126]'}
      voice_element_params_127: {pos: 64, type: u1, -orig-id: 'voice.element[i].params[127]'}
      voice_element_params_128: {pos: 65, type: u1, -orig-id: 'voice.element[i].params[128]'}
      voice_element_params_129: {pos: 66, type: u1, -orig-id: 'voice.element[i].params[129]'}
      voice_element_params_130: {pos: 67, type: u1, -orig-id: 'voice.element[i].params[130]'}
      voice_element_params_131: {pos: 68, type: u1, -orig-id: 'voice.element[i].params[131]'}
      voice_element_params_132: {pos: 69, type: u1, -orig-id: 'voice.element[i].params[132]'}
      voice_element_params_133: {pos: 70, type: u1, -orig-id: 'voice.element[i].params[133]'}
      voice_element_params_134: {pos: 71, type: u1, -orig-id: 'voice.element[i].params[134]'}
      voice_element_params_135: {pos: 72, type: u1, -orig-id: 'voice.element[i].params[135]'}
      voice_element_params_136: {pos: 73, type: u1, -orig-id: 'voice.element[i].params[136]'}
  drum_key:
    doc: Drum key.
    params:
      - id: i
        type: u1
        doc: Which of them, from 0.
    seq:
      - id: data
        size: 46
    instances:
      voice_key_params_0: {pos: 0, type: u1, -orig-id: 'voice.key[i].params[0]'}
      voice_key_params_1: {pos: 1, type: u1, -orig-id: 'voice.key[i].params[1]'}
      voice_key_params_3: {pos: 4, type: u1, -orig-id: 'voice.key[i].params[3]'}
      voice_key_params_4: {pos: 5, type: u1, -orig-id: 'voice.key[i].params[4]'}
      voice_key_params_5: {pos: 6, type: u1, -orig-id: 'voice.key[i].params[5]'}
      voice_key_wave_0: {value: 'data[2] << 7 | data[3]', -orig-id: 'voice.key[i].wave[0]'}
      voice_key_params_6: {pos: 7, type: u1, -orig-id: 'voice.key[i].params[6]'}
      voice_key_params_7: {pos: 8, type: u1, -orig-id: 'voice.key[i].params[7]'}
      voice_key_params_8: {pos: 9, type: u1, -orig-id: 'voice.key[i].params[8]'}
      voice_key_params_18: {pos: 10, type: u1, -orig-id: 'voice.key[i].params[18]'}
      voice_key_params_19: {pos: 11, type: u1, -orig-id: 'voice.key[i].params[19]'}
      voice_key_params_20: {pos: 12, type: u1, -orig-id: 'voice.key[i].params[20]'}
      voice_key_params_33: {pos: 14, type: u1, -orig-id: 'voice.key[i].params[33]'}
      voice_key_params_34: {pos: 15, type: u1, -orig-id: 'voice.key[i].params[34]'}
      voice_key_params_37: {pos: 17, type: u1, -orig-id: 'voice.key[i].params[37]'}
      voice_key_params_38: {pos: 18, type: u1, -orig-id: 'voice.key[i].params[38]'}
      voice_key_params_39: {pos: 19, type: u1, -orig-id: 'voice.key[i].params[39]'}
      voice_key_params_44: {pos: 23, type: u1, -orig-id: 'voice.key[i].params[44]'}
      voice_key_params_60: {pos: 26, type: u1, -orig-id: 'voice.key[i].params[60]'}
      voice_key_params_61: {pos: 27, type: u1, -orig-id: 'voice.key[i].params[61]'}
      voice_key_params_62: {pos: 28, type: u1, -orig-id: 'voice.key[i].params[62]'}
      voice_key_params_85: {value: '(data[30] << 7 | data[31]) & 0xff', -orig-id: 'voice.key[i].params[85]'}
      voice_key_params_86: {pos: 32, type: u1, -orig-id: 'voice.key[i].params[86]'}
      voice_key_params_87: {pos: 33, type: u1, -orig-id: 'voice.key[i].params[87]'}
      voice_key_params_89: {value: '(data[34] << 7 | data[35]) & 0xff', -orig-id: 'voice.key[i].params[89]'}
      voice_key_params_119: {pos: 36, type: u1, -orig-id: 'voice.key[i].params[119]'}
      voice_key_params_120: {pos: 37, type: u1, -orig-id: 'voice.key[i].params[120]'}
      voice_key_params_121: {value: '(data[38] << 7 | data[39]) & 0xff', -orig-id: 'voice.key[i].params[121]'}
      voice_key_params_122: {pos: 40, type: u1, -orig-id: 'voice.key[i].params[122]'}
      voice_key_params_123: {value: '(data[42] << 7 | data[43]) & 0xff', -orig-id: 'voice.key[i].params[123]'}
      voice_key_params_124: {pos: 44, type: u1, -orig-id: 'voice.key[i].params[124]'}
  multi_common:
    doc: Multi common.
    seq:
      - id: data
        size: 80
    instances:
      multi_common_2: {value: 'data[30] & 0x0f', -orig-id: 'multi.common[2]'}
      multi_common_33: {value: 'data[30] >> 4', -orig-id: 'multi.common[33]'}
      multi_common_28: {pos: 63, type: u1, -orig-id: 'multi.common[28]'}
      multi_common_29: {pos: 64, type: u1, -orig-id: 'multi.common[29]'}
      multi_common_40: {pos: 75, type: u1, -orig-id: 'multi.common[40]'}
      multi_part_14_main_54: {value: '(data[77] & 0x01) != 0 ? 1 : 0', -orig-id: 'multi.part[14].main[54]'}
      multi_part_15_main_54: {value: '(data[77] & 0x02) != 0 ? 1 : 0', -orig-id: 'multi.part[15].main[54]'}
      multi_ad_part_0_params_7: {value: '(data[77] & 0x20) != 0 ? 1 : 0', -orig-id: 'multi.adPart[0].params[7]'}
      multi_part_7_main_54: {value: '(data[78] & 0x01) != 0 ? 1 : 0', -orig-id: 'multi.part[7].main[54]'}
      multi_part_0_main_54: {value: '(data[79] & 0x01) != 0 ? 1 : 0', -orig-id: 'multi.part[0].main[54]'}
      multi_part_8_main_54: {value: '(data[78] & 0x02) != 0 ? 1 : 0', -orig-id: 'multi.part[8].main[54]'}
      multi_part_1_main_54: {value: '(data[79] & 0x02) != 0 ? 1 : 0', -orig-id: 'multi.part[1].main[54]'}
      multi_part_9_main_54: {value: '(data[78] & 0x04) != 0 ? 1 : 0', -orig-id: 'multi.part[9].main[54]'}
      multi_part_2_main_54: {value: '(data[79] & 0x04) != 0 ? 1 : 0', -orig-id: 'multi.part[2].main[54]'}
      multi_part_10_main_54: {value: '(data[78] & 0x08) != 0 ? 1 : 0', -orig-id: 'multi.part[10].main[54]'}
      multi_part_3_main_54: {value: '(data[79] & 0x08) != 0 ? 1 : 0', -orig-id: 'multi.part[3].main[54]'}
      multi_part_11_main_54: {value: '(data[78] & 0x10) != 0 ? 1 : 0', -orig-id: 'multi.part[11].main[54]'}
      multi_part_4_main_54: {value: '(data[79] & 0x10) != 0 ? 1 : 0', -orig-id: 'multi.part[4].main[54]'}
      multi_part_12_main_54: {value: '(data[78] & 0x20) != 0 ? 1 : 0', -orig-id: 'multi.part[12].main[54]'}
      multi_part_5_main_54: {value: '(data[79] & 0x20) != 0 ? 1 : 0', -orig-id: 'multi.part[5].main[54]'}
      multi_part_13_main_54: {value: '(data[78] & 0x40) != 0 ? 1 : 0', -orig-id: 'multi.part[13].main[54]'}
      multi_part_6_main_54: {value: '(data[79] & 0x40) != 0 ? 1 : 0', -orig-id: 'multi.part[6].main[54]'}
  performance_common:
    doc: Performance common.
    seq:
      - id: data
        size: 81
    instances:
      multi_name: {pos: 0, size: 20, type: str, encoding: ISO-8859-1, terminator: 0, -orig-id: 'multi.name'}
      multi_common_0: {pos: 24, type: u1, -orig-id: 'multi.common[0]'}
      multi_common_1: {pos: 25, type: u1, -orig-id: 'multi.common[1]'}
      multi_common_2: {value: 'data[30] & 0x0f', -orig-id: 'multi.common[2]'}
      multi_common_33: {value: 'data[30] >> 4', -orig-id: 'multi.common[33]'}
      multi_common_3: {pos: 31, type: u1, -orig-id: 'multi.common[3]'}
      multi_common_4: {pos: 33, type: u1, -orig-id: 'multi.common[4]'}
      multi_common_5: {pos: 34, type: u1, -orig-id: 'multi.common[5]'}
      multi_common_6: {pos: 35, type: u1, -orig-id: 'multi.common[6]'}
      multi_common_7: {pos: 36, type: u1, -orig-id: 'multi.common[7]'}
      multi_common_8: {pos: 37, type: u1, -orig-id: 'multi.common[8]'}
      multi_common_9: {pos: 38, type: u1, -orig-id: 'multi.common[9]'}
      multi_common_10: {pos: 40, type: u1, -orig-id: 'multi.common[10]'}
      multi_common_11: {pos: 41, type: u1, -orig-id: 'multi.common[11]'}
      multi_common_12: {pos: 42, type: u1, -orig-id: 'multi.common[12]'}
      multi_common_13: {pos: 43, type: u1, -orig-id: 'multi.common[13]'}
      multi_common_14: {pos: 46, type: u1, -orig-id: 'multi.common[14]'}
      multi_common_15: {pos: 47, type: u1, -orig-id: 'multi.common[15]'}
      multi_common_16: {pos: 49, type: u1, -orig-id: 'multi.common[16]'}
      multi_common_17: {pos: 50, type: u1, -orig-id: 'multi.common[17]'}
      multi_common_18: {pos: 51, type: u1, -orig-id: 'multi.common[18]'}
      multi_common_19: {pos: 53, type: u1, -orig-id: 'multi.common[19]'}
      multi_common_20: {pos: 54, type: u1, -orig-id: 'multi.common[20]'}
      multi_common_21: {pos: 56, type: u1, -orig-id: 'multi.common[21]'}
      multi_common_22: {pos: 57, type: u1, -orig-id: 'multi.common[22]'}
      multi_common_23: {pos: 58, type: u1, -orig-id: 'multi.common[23]'}
      multi_common_24: {pos: 59, type: u1, -orig-id: 'multi.common[24]'}
      multi_common_25: {pos: 60, type: u1, -orig-id: 'multi.common[25]'}
      multi_common_28: {pos: 63, type: u1, -orig-id: 'multi.common[28]'}
      multi_common_29: {pos: 64, type: u1, -orig-id: 'multi.common[29]'}
      multi_common_31: {pos: 66, type: u1, -orig-id: 'multi.common[31]'}
      multi_common_32: {pos: 67, type: u1, -orig-id: 'multi.common[32]'}
      multi_common_40: {pos: 76, type: u1, -orig-id: 'multi.common[40]'}
      multi_ad_part_0_params_7: {value: '(data[78] & 0x20) != 0 ? 1 : 0', -orig-id: 'multi.adPart[0].params[7]'}
      multi_part_0_main_54: {value: '(data[80] & 0x01) != 0 ? 1 : 0', -orig-id: 'multi.part[0].main[54]'}
      multi_part_1_main_54: {value: '(data[80] & 0x02) != 0 ? 1 : 0', -orig-id: 'multi.part[1].main[54]'}
      multi_part_2_main_54: {value: '(data[80] & 0x04) != 0 ? 1 : 0', -orig-id: 'multi.part[2].main[54]'}
      multi_part_3_main_54: {value: '(data[80] & 0x08) != 0 ? 1 : 0', -orig-id: 'multi.part[3].main[54]'}
  insertion_effect_a_of_a_multi_or_performance:
    doc: Insertion effect A of a multi or performance.
    seq:
      - id: data
        size: 36
    instances:
      multi_insertion_a_0: {pos: 0, type: u1, -orig-id: 'multi.insertionA[0]'}
      multi_insertion_a_1: {pos: 1, type: u1, -orig-id: 'multi.insertionA[1]'}
      multi_insertion_a_4: {pos: 2, type: u1, -orig-id: 'multi.insertionA[4]'}
      multi_insertion_a_5: {value: 'data[4] << 7 | data[5]', -orig-id: 'multi.insertionA[5]'}
      multi_insertion_a_6: {value: 'data[6] << 7 | data[7]', -orig-id: 'multi.insertionA[6]'}
      multi_insertion_a_7: {value: 'data[8] << 7 | data[9]', -orig-id: 'multi.insertionA[7]'}
      multi_insertion_a_8: {value: 'data[10] << 7 | data[11]', -orig-id: 'multi.insertionA[8]'}
      multi_insertion_a_9: {value: 'data[12] << 7 | data[13]', -orig-id: 'multi.insertionA[9]'}
      multi_insertion_a_10: {value: 'data[14] << 7 | data[15]', -orig-id: 'multi.insertionA[10]'}
      multi_insertion_a_11: {value: 'data[16] << 7 | data[17]', -orig-id: 'multi.insertionA[11]'}
      multi_insertion_a_12: {value: 'data[18] << 7 | data[19]', -orig-id: 'multi.insertionA[12]'}
      multi_insertion_a_13: {value: 'data[20] << 7 | data[21]', -orig-id: 'multi.insertionA[13]'}
      multi_insertion_a_14: {value: 'data[22] << 7 | data[23]', -orig-id: 'multi.insertionA[14]'}
      multi_insertion_a_15: {value: 'data[24] << 7 | data[25]', -orig-id: 'multi.insertionA[15]'}
      multi_insertion_a_16: {value: 'data[26] << 7 | data[27]', -orig-id: 'multi.insertionA[16]'}
      multi_insertion_a_17: {value: 'data[28] << 7 | data[29]', -orig-id: 'multi.insertionA[17]'}
      multi_insertion_a_18: {value: 'data[30] << 7 | data[31]', -orig-id: 'multi.insertionA[18]'}
      multi_insertion_a_19: {value: 'data[32] << 7 | data[33]', -orig-id: 'multi.insertionA[19]'}
      multi_insertion_a_20: {value: 'data[34] << 7 | data[35]', -orig-id: 'multi.insertionA[20]'}
  insertion_effect_b_of_a_multi_or_performance:
    doc: Insertion effect B of a multi or performance.
    seq:
      - id: data
        size: 36
    instances:
      multi_insertion_b_0: {pos: 0, type: u1, -orig-id: 'multi.insertionB[0]'}
      multi_insertion_b_1: {pos: 1, type: u1, -orig-id: 'multi.insertionB[1]'}
      multi_insertion_b_4: {pos: 2, type: u1, -orig-id: 'multi.insertionB[4]'}
      multi_insertion_b_5: {value: 'data[4] << 7 | data[5]', -orig-id: 'multi.insertionB[5]'}
      multi_insertion_b_6: {value: 'data[6] << 7 | data[7]', -orig-id: 'multi.insertionB[6]'}
      multi_insertion_b_7: {value: 'data[8] << 7 | data[9]', -orig-id: 'multi.insertionB[7]'}
      multi_insertion_b_8: {value: 'data[10] << 7 | data[11]', -orig-id: 'multi.insertionB[8]'}
      multi_insertion_b_9: {value: 'data[12] << 7 | data[13]', -orig-id: 'multi.insertionB[9]'}
      multi_insertion_b_10: {value: 'data[14] << 7 | data[15]', -orig-id: 'multi.insertionB[10]'}
      multi_insertion_b_11: {value: 'data[16] << 7 | data[17]', -orig-id: 'multi.insertionB[11]'}
      multi_insertion_b_12: {value: 'data[18] << 7 | data[19]', -orig-id: 'multi.insertionB[12]'}
      multi_insertion_b_13: {value: 'data[20] << 7 | data[21]', -orig-id: 'multi.insertionB[13]'}
      multi_insertion_b_14: {value: 'data[22] << 7 | data[23]', -orig-id: 'multi.insertionB[14]'}
      multi_insertion_b_15: {value: 'data[24] << 7 | data[25]', -orig-id: 'multi.insertionB[15]'}
      multi_insertion_b_16: {value: 'data[26] << 7 | data[27]', -orig-id: 'multi.insertionB[16]'}
      multi_insertion_b_17: {value: 'data[28] << 7 | data[29]', -orig-id: 'multi.insertionB[17]'}
      multi_insertion_b_18: {value: 'data[30] << 7 | data[31]', -orig-id: 'multi.insertionB[18]'}
      multi_insertion_b_19: {value: 'data[32] << 7 | data[33]', -orig-id: 'multi.insertionB[19]'}
      multi_insertion_b_20: {value: 'data[34] << 7 | data[35]', -orig-id: 'multi.insertionB[20]'}
  master_eq_of_a_multi_or_performance:
    doc: Master EQ of a multi or performance.
    seq:
      - id: data
        size: 20
    instances:
      multi_master_eq_0: {pos: 0, type: u1, -orig-id: 'multi.masterEq[0]'}
      multi_master_eq_1: {pos: 1, type: u1, -orig-id: 'multi.masterEq[1]'}
      multi_master_eq_2: {pos: 2, type: u1, -orig-id: 'multi.masterEq[2]'}
      multi_master_eq_3: {pos: 3, type: u1, -orig-id: 'multi.masterEq[3]'}
      multi_master_eq_4: {pos: 4, type: u1, -orig-id: 'multi.masterEq[4]'}
      multi_master_eq_5: {pos: 5, type: u1, -orig-id: 'multi.masterEq[5]'}
      multi_master_eq_6: {pos: 6, type: u1, -orig-id: 'multi.masterEq[6]'}
      multi_master_eq_8: {pos: 8, type: u1, -orig-id: 'multi.masterEq[8]'}
      multi_master_eq_9: {pos: 9, type: u1, -orig-id: 'multi.masterEq[9]'}
      multi_master_eq_10: {pos: 10, type: u1, -orig-id: 'multi.masterEq[10]'}
      multi_master_eq_11: {pos: 12, type: u1, -orig-id: 'multi.masterEq[11]'}
      multi_master_eq_12: {pos: 13, type: u1, -orig-id: 'multi.masterEq[12]'}
      multi_master_eq_13: {pos: 14, type: u1, -orig-id: 'multi.masterEq[13]'}
      multi_master_eq_14: {pos: 16, type: u1, -orig-id: 'multi.masterEq[14]'}
      multi_master_eq_15: {pos: 17, type: u1, -orig-id: 'multi.masterEq[15]'}
      multi_master_eq_16: {pos: 18, type: u1, -orig-id: 'multi.masterEq[16]'}
      multi_master_eq_17: {pos: 19, type: u1, -orig-id: 'multi.masterEq[17]'}
  master_effect_of_a_multi_or_performance:
    doc: Master effect of a multi or performance.
    seq:
      - id: data
        size: 38
    instances:
      multi_master_effect_0: {pos: 0, type: u1, -orig-id: 'multi.masterEffect[0]'}
      multi_master_effect_1: {pos: 1, type: u1, -orig-id: 'multi.masterEffect[1]'}
      multi_master_effect_4: {pos: 2, type: u1, -orig-id: 'multi.masterEffect[4]'}
      multi_master_effect_5: {value: 'data[4] << 7 | data[5]', -orig-id: 'multi.masterEffect[5]'}
      multi_master_effect_6: {value: 'data[6] << 7 | data[7]', -orig-id: 'multi.masterEffect[6]'}
      multi_master_effect_7: {value: 'data[8] << 7 | data[9]', -orig-id: 'multi.masterEffect[7]'}
      multi_master_effect_8: {value: 'data[10] << 7 | data[11]', -orig-id: 'multi.masterEffect[8]'}
      multi_master_effect_9: {value: 'data[12] << 7 | data[13]', -orig-id: 'multi.masterEffect[9]'}
      multi_master_effect_10: {value: 'data[14] << 7 | data[15]', -orig-id: 'multi.masterEffect[10]'}
      multi_master_effect_11: {value: 'data[16] << 7 | data[17]', -orig-id: 'multi.masterEffect[11]'}
      multi_master_effect_12: {value: 'data[18] << 7 | data[19]', -orig-id: 'multi.masterEffect[12]'}
      multi_master_effect_13: {value: 'data[20] << 7 | data[21]', -orig-id: 'multi.masterEffect[13]'}
      multi_master_effect_14: {value: 'data[22] << 7 | data[23]', -orig-id: 'multi.masterEffect[14]'}
      multi_master_effect_15: {value: 'data[24] << 7 | data[25]', -orig-id: 'multi.masterEffect[15]'}
      multi_master_effect_16: {value: 'data[26] << 7 | data[27]', -orig-id: 'multi.masterEffect[16]'}
      multi_master_effect_17: {value: 'data[28] << 7 | data[29]', -orig-id: 'multi.masterEffect[17]'}
      multi_master_effect_18: {value: 'data[30] << 7 | data[31]', -orig-id: 'multi.masterEffect[18]'}
      multi_master_effect_19: {value: 'data[32] << 7 | data[33]', -orig-id: 'multi.masterEffect[19]'}
      multi_master_effect_20: {value: 'data[34] << 7 | data[35]', -orig-id: 'multi.masterEffect[20]'}
      multi_master_effect_settings_0: {pos: 36, type: u1, -orig-id: 'multi.masterEffectSettings[0]'}
  arpeggio_of_a_multi:
    doc: Arpeggio of a multi.
    seq:
      - id: data
        size: 14
    instances:
      arpeggio_common_6: {pos: 0, type: u1, -orig-id: 'arpeggio.common[6]'}
      arpeggio_common_0: {pos: 4, type: u1, -orig-id: 'arpeggio.common[0]'}
      arpeggio_common_1: {pos: 5, type: u1, -orig-id: 'arpeggio.common[1]'}
      arpeggio_common_2: {value: '(data[6] << 7 | data[7]) & 0xff', -orig-id: 'arpeggio.common[2]'}
      arpeggio_common_3: {value: '(data[8] << 7 | data[9]) & 0xff', -orig-id: 'arpeggio.common[3]'}
      arpeggio_common_4: {value: '(data[10] << 7 | data[11]) & 0xff', -orig-id: 'arpeggio.common[4]'}
      arpeggio_common_5: {value: '(data[12] << 7 | data[13]) & 0xff', -orig-id: 'arpeggio.common[5]'}
  arpeggio_of_a_performance:
    doc: Arpeggio of a performance.
    seq:
      - id: data
        size: 13
    instances:
      arpeggio_common_6: {pos: 0, type: u1, -orig-id: 'arpeggio.common[6]'}
      arpeggio_common_0: {pos: 4, type: u1, -orig-id: 'arpeggio.common[0]'}
      arpeggio_common_1: {pos: 5, type: u1, -orig-id: 'arpeggio.common[1]'}
      arpeggio_common_2: {value: '(data[6] << 7 | data[7]) & 0xff', -orig-id: 'arpeggio.common[2]'}
      arpeggio_common_3: {value: '(data[8] << 7 | data[9]) & 0xff', -orig-id: 'arpeggio.common[3]'}
      arpeggio_common_4: {value: '(data[10] << 7 | data[11]) & 0xff', -orig-id: 'arpeggio.common[4]'}
      arpeggio_common_5: {value: 'data[12] << 7 & 0xff', -orig-id: 'arpeggio.common[5]'}
  multi_part:
    doc: Multi part.
    params:
      - id: i
        type: u1
        doc: Which of them, from 0.
    seq:
      - id: data
        size: 62
    instances:
      selects_voice:
        value: >-
          data[1] == 0x3f and data[2] >= 0x00 and data[2] <= 0x0a and data[3] < 128 or
          data[1] == 0x3f and data[2] == 0x20 and data[3] < 64 or
          data[1] == 0x3f and data[2] == 0x28 and data[3] < 32 or
          data[1] == 0x00 and data[2] == 0x00 and data[3] < 128 or
          data[1] == 0x7f and data[2] == 0x00 and data[3] < 1 or
          data[1] == 0x3f and data[2] == 0x3c and data[3] < 16 or
          data[1] == 0x3f and data[2] == 0x32 and data[3] < 128
        doc: Without one the part keeps the voice that it has.
      multi_part_bank_program_0: {pos: 1, type: u1, if: selects_voice, -orig-id: 'multi.part[i].bankProgram[0]'}
      multi_part_bank_program_1: {pos: 2, type: u1, if: selects_voice, -orig-id: 'multi.part[i].bankProgram[1]'}
      multi_part_bank_program_2: {pos: 3, type: u1, if: selects_voice, -orig-id: 'multi.part[i].bankProgram[2]'}
      multi_part_main_1: {pos: 4, type: u1, -orig-id: 'multi.part[i].main[1]'}
      multi_part_main_2: {pos: 5, type: u1, -orig-id: 'multi.part[i].main[2]'}
      multi_part_main_3: {pos: 6, type: u1, -orig-id: 'multi.part[i].main[3]'}
      multi_part_main_4: {pos: 7, type: u1, -orig-id: 'multi.part[i].main[4]'}
      multi_part_main_5: {pos: 8, type: u1, -orig-id: 'multi.part[i].main[5]'}
      multi_part_main_6: {pos: 9, type: u1, -orig-id: 'multi.part[i].main[6]'}
      multi_part_main_7: {pos: 10, type: u1, -orig-id: 'multi.part[i].main[7]'}
      multi_part_main_8: {pos: 11, type: u1, -orig-id: 'multi.part[i].main[8]'}
      multi_part_main_9: {pos: 12, type: u1, -orig-id: 'multi.part[i].main[9]'}
      multi_part_main_10: {pos: 13, type: u1, -orig-id: 'multi.part[i].main[10]'}
      multi_part_main_11: {pos: 14, type: u1, -orig-id: 'multi.part[i].main[11]'}
      multi_part_main_12: {pos: 15, type: u1, -orig-id: 'multi.part[i].main[12]'}
      multi_part_main_13: {value: '(data[16] << 4 | data[17]) & 0xff', -orig-id: 'multi.part[i].main[13]'}
      multi_part_main_14: {pos: 18, type: u1, -orig-id: 'multi.part[i].main[14]'}
      multi_part_main_15: {pos: 19, type: u1, -orig-id: 'multi.part[i].main[15]'}
      multi_part_main_16: {pos: 21, type: u1, -orig-id: 'multi.part[i].main[16]'}
      multi_part_main_17: {pos: 22, type: u1, -orig-id: 'multi.part[i].main[17]'}
      multi_part_main_18: {pos: 24, type: u1, -orig-id: 'multi.part[i].main[18]'}
      multi_part_main_19: {pos: 25, type: u1, -orig-id: 'multi.part[i].main[19]'}
      multi_part_main_20: {pos: 26, type: u1, -orig-id: 'multi.part[i].main[20]'}
      multi_part_main_21: {pos: 27, type: u1, -orig-id: 'multi.part[i].main[21]'}
      multi_part_main_22: {pos: 28, type: u1, -orig-id: 'multi.part[i].main[22]'}
      multi_part_main_23: {pos: 30, type: u1, -orig-id: 'multi.part[i].main[23]'}
      multi_part_main_24: {value: '(data[31] & 0x04) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[24]'}
      multi_part_main_25: {value: '(data[31] & 0x08) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[25]'}
      multi_part_main_26: {value: '(data[31] & 0x10) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[26]'}
      multi_part_main_27: {value: '(data[31] & 0x20) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[27]'}
      multi_part_main_28: {value: '(data[31] & 0x40) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[28]'}
      multi_part_main_29: {value: '(data[32] & 0x01) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[29]'}
      multi_part_main_30: {value: '(data[32] & 0x02) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[30]'}
      multi_part_main_31: {value: '(data[32] & 0x04) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[31]'}
      multi_part_main_32: {value: '(data[32] & 0x08) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[32]'}
      multi_part_main_33: {value: '(data[32] & 0x20) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[33]'}
      multi_part_main_34: {value: '(data[32] & 0x40) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[34]'}
      multi_part_main_35: {value: '(data[33] & 0x01) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[35]'}
      multi_part_main_36: {value: '(data[33] & 0x02) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[36]'}
      multi_part_main_37: {value: '(data[33] & 0x04) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[37]'}
      multi_part_main_38: {value: '(data[33] & 0x08) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[38]'}
      multi_part_main_39: {value: '(data[33] & 0x10) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[39]'}
      multi_part_main_40: {value: '(data[33] & 0x20) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[40]'}
      multi_part_main_41: {value: '(data[33] & 0x40) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[41]'}
      multi_part_main_42: {pos: 34, type: u1, -orig-id: 'multi.part[i].main[42]'}
      multi_part_main_43: {pos: 35, type: u1, -orig-id: 'multi.part[i].main[43]'}
      multi_part_main_44: {pos: 36, type: u1, -orig-id: 'multi.part[i].main[44]'}
      multi_part_main_45: {pos: 37, type: u1, -orig-id: 'multi.part[i].main[45]'}
      multi_part_main_46: {pos: 38, type: u1, -orig-id: 'multi.part[i].main[46]'}
      multi_part_main_47: {pos: 39, type: u1, -orig-id: 'multi.part[i].main[47]'}
      multi_part_main_48: {pos: 40, type: u1, -orig-id: 'multi.part[i].main[48]'}
      multi_part_main_49: {pos: 41, type: u1, -orig-id: 'multi.part[i].main[49]'}
      multi_part_main_50: {pos: 42, type: u1, -orig-id: 'multi.part[i].main[50]'}
      multi_part_main_51: {pos: 43, type: u1, -orig-id: 'multi.part[i].main[51]'}
      multi_part_main_52: {pos: 45, type: u1, -orig-id: 'multi.part[i].main[52]'}
      multi_part_main_53: {pos: 46, type: u1, -orig-id: 'multi.part[i].main[53]'}
      multi_part_extra_0: {value: '(data[48] << 7 | data[49]) & 0xff', -orig-id: 'multi.part[i].extra[0]'}
      multi_part_extra_1: {pos: 50, type: u1, -orig-id: 'multi.part[i].extra[1]'}
      multi_part_extra_2: {value: '(data[52] << 7 | data[53]) & 0xff', -orig-id: 'multi.part[i].extra[2]'}
      multi_part_extra_3: {pos: 54, type: u1, -orig-id: 'multi.part[i].extra[3]'}
      multi_part_extra_4: {pos: 55, type: u1, -orig-id: 'multi.part[i].extra[4]'}
      multi_part_extra_5: {value: '(data[56] << 7 | data[57]) & 0xff', -orig-id: 'multi.part[i].extra[5]'}
      multi_part_extra_6: {pos: 58, type: u1, -orig-id: 'multi.part[i].extra[6]'}
      multi_part_main_56: {pos: 60, type: u1, -orig-id: 'multi.part[i].main[56]'}
      multi_part_main_57: {pos: 61, type: u1, -orig-id: 'multi.part[i].main[57]'}
  performance_part:
    doc: Performance part.
    params:
      - id: i
        type: u1
        doc: Which of them, from 0.
    seq:
      - id: data
        size: 63
    instances:
      multi_part_main_0: {pos: 0, type: u1, -orig-id: 'multi.part[i].main[0]'}
      multi_part_main_55: {pos: 30, type: u1, -orig-id: 'multi.part[i].main[55]'}
      selects_voice:
        value: >-
          data[1] == 0x3f and data[2] >= 0x00 and data[2] <= 0x0a and data[3] < 128 or
          data[1] == 0x3f and data[2] == 0x20 and data[3] < 64 or
          data[1] == 0x3f and data[2] == 0x28 and data[3] < 32 or
          data[1] == 0x00 and data[2] == 0x00 and data[3] < 128 or
          data[1] == 0x7f and data[2] == 0x00 and data[3] < 1 or
          data[1] == 0x3f and data[2] == 0x3c and data[3] < 16 or
          data[1] == 0x3f and data[2] == 0x32 and data[3] < 128
        doc: Without one the part keeps the voice that it has.
      multi_part_bank_program_0: {pos: 1, type: u1, if: selects_voice, -orig-id: 'multi.part[i].bankProgram[0]'}
      multi_part_bank_program_1: {pos: 2, type: u1, if: selects_voice, -orig-id: 'multi.part[i].bankProgram[1]'}
      multi_part_bank_program_2: {pos: 3, type: u1, if: selects_voice, -orig-id: 'multi.part[i].bankProgram[2]'}
      multi_part_main_1: {pos: 4, type: u1, -orig-id: 'multi.part[i].main[1]'}
      multi_part_main_2: {pos: 5, type: u1, -orig-id: 'multi.part[i].main[2]'}
      multi_part_main_3: {pos: 6, type: u1, -orig-id: 'multi.part[i].main[3]'}
      multi_part_main_4: {pos: 7, type: u1, -orig-id: 'multi.part[i].main[4]'}
      multi_part_main_5: {pos: 8, type: u1, -orig-id: 'multi.part[i].main[5]'}
      multi_part_main_6: {pos: 9, type: u1, -orig-id: 'multi.part[i].main[6]'}
      multi_part_main_7: {pos: 10, type: u1, -orig-id: 'multi.part[i].main[7]'}
      multi_part_main_8: {pos: 11, type: u1, -orig-id: 'multi.part[i].main[8]'}
      multi_part_main_9: {pos: 12, type: u1, -orig-id: 'multi.part[i].main[9]'}
      multi_part_main_10: {pos: 13, type: u1, -orig-id: 'multi.part[i].main[10]'}
      multi_part_main_11: {pos: 14, type: u1, -orig-id: 'multi.part[i].main[11]'}
      multi_part_main_12: {pos: 15, type: u1, -orig-id: 'multi.part[i].main[12]'}
      multi_part_main_13: {value: '(data[16] << 4 | data[17]) & 0xff', -orig-id: 'multi.part[i].main[13]'}
      multi_part_main_14: {pos: 18, type: u1, -orig-id: 'multi.part[i].main[14]'}
      multi_part_main_15: {pos: 19, type: u1, -orig-id: 'multi.part[i].main[15]'}
      multi_part_main_16: {pos: 21, type: u1, -orig-id: 'multi.part[i].main[16]'}
      multi_part_main_17: {pos: 22, type: u1, -orig-id: 'multi.part[i].main[17]'}
      multi_part_main_18: {pos: 24, type: u1, -orig-id: 'multi.part[i].main[18]'}
      multi_part_main_19: {pos: 25, type: u1, -orig-id: 'multi.part[i].main[19]'}
      multi_part_main_20: {pos: 26, type: u1, -orig-id: 'multi.part[i].main[20]'}
      multi_part_main_21: {pos: 27, type: u1, -orig-id: 'multi.part[i].main[21]'}
      multi_part_main_22: {pos: 28, type: u1, -orig-id: 'multi.part[i].main[22]'}
      multi_part_main_23: {pos: 30, type: u1, -orig-id: 'multi.part[i].main[23]'}
      multi_part_main_24: {value: '(data[31] & 0x04) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[24]'}
      multi_part_main_25: {value: '(data[31] & 0x08) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[25]'}
      multi_part_main_26: {value: '(data[31] & 0x10) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[26]'}
      multi_part_main_27: {value: '(data[31] & 0x20) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[27]'}
      multi_part_main_28: {value: '(data[31] & 0x40) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[28]'}
      multi_part_main_29: {value: '(data[32] & 0x01) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[29]'}
      multi_part_main_30: {value: '(data[32] & 0x02) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[30]'}
      multi_part_main_31: {value: '(data[32] & 0x04) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[31]'}
      multi_part_main_32: {value: '(data[32] & 0x08) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[32]'}
      multi_part_main_33: {value: '(data[32] & 0x20) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[33]'}
      multi_part_main_34: {value: '(data[32] & 0x40) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[34]'}
      multi_part_main_35: {value: '(data[33] & 0x01) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[35]'}
      multi_part_main_36: {value: '(data[33] & 0x02) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[36]'}
      multi_part_main_37: {value: '(data[33] & 0x04) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[37]'}
      multi_part_main_38: {value: '(data[33] & 0x08) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[38]'}
      multi_part_main_39: {value: '(data[33] & 0x10) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[39]'}
      multi_part_main_40: {value: '(data[33] & 0x20) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[40]'}
      multi_part_main_41: {value: '(data[33] & 0x40) != 0 ? 1 : 0', -orig-id: 'multi.part[i].main[41]'}
      multi_part_main_42: {pos: 34, type: u1, -orig-id: 'multi.part[i].main[42]'}
      multi_part_main_43: {pos: 35, type: u1, -orig-id: 'multi.part[i].main[43]'}
      multi_part_main_44: {pos: 36, type: u1, -orig-id: 'multi.part[i].main[44]'}
      multi_part_main_45: {pos: 37, type: u1, -orig-id: 'multi.part[i].main[45]'}
      multi_part_main_46: {pos: 38, type: u1, -orig-id: 'multi.part[i].main[46]'}
      multi_part_main_47: {pos: 39, type: u1, -orig-id: 'multi.part[i].main[47]'}
      multi_part_main_48: {pos: 40, type: u1, -orig-id: 'multi.part[i].main[48]'}
      multi_part_main_49: {pos: 41, type: u1, -orig-id: 'multi.part[i].main[49]'}
      multi_part_main_50: {pos: 42, type: u1, -orig-id: 'multi.part[i].main[50]'}
      multi_part_main_51: {pos: 43, type: u1, -orig-id: 'multi.part[i].main[51]'}
      multi_part_main_52: {pos: 45, type: u1, -orig-id: 'multi.part[i].main[52]'}
      multi_part_main_53: {pos: 46, type: u1, -orig-id: 'multi.part[i].main[53]'}
      multi_part_extra_0: {value: '(data[48] << 7 | data[49]) & 0xff', -orig-id: 'multi.part[i].extra[0]'}
      multi_part_extra_1: {pos: 50, type: u1, -orig-id: 'multi.part[i].extra[1]'}
      multi_part_extra_2: {value: '(data[52] << 7 | data[53]) & 0xff', -orig-id: 'multi.part[i].extra[2]'}
      multi_part_extra_3: {pos: 54, type: u1, -orig-id: 'multi.part[i].extra[3]'}
      multi_part_extra_4: {pos: 55, type: u1, -orig-id: 'multi.part[i].extra[4]'}
      multi_part_extra_5: {value: '(data[56] << 7 | data[57]) & 0xff', -orig-id: 'multi.part[i].extra[5]'}
      multi_part_extra_6: {pos: 58, type: u1, -orig-id: 'multi.part[i].extra[6]'}
      multi_part_main_56: {pos: 60, type: u1, -orig-id: 'multi.part[i].main[56]'}
      multi_part_main_57: {pos: 61, type: u1, -orig-id: 'multi.part[i].main[57]'}
  arpeggio_of_a_part:
    doc: Arpeggio of a part.
    params:
      - id: i
        type: u1
        doc: Which of them, from 0.
    seq:
      - id: data
        size: 72
    instances:
      arpeggio_part_params_0: {pos: 0, type: u1, -orig-id: 'arpeggio.part[i].params[0]'}
      arpeggio_part_params_1: {pos: 1, type: u1, -orig-id: 'arpeggio.part[i].params[1]'}
      arpeggio_part_params_2: {pos: 2, type: u1, -orig-id: 'arpeggio.part[i].params[2]'}
      arpeggio_part_params_38: {pos: 3, type: u1, -orig-id: 'arpeggio.part[i].params[38]'}
      arpeggio_part_params_3: {pos: 6, type: u1, -orig-id: 'arpeggio.part[i].params[3]'}
      arpeggio_part_params_4: {pos: 7, type: u1, -orig-id: 'arpeggio.part[i].params[4]'}
      arpeggio_part_params_5: {pos: 8, type: u1, -orig-id: 'arpeggio.part[i].params[5]'}
      arpeggio_part_params_6: {pos: 9, type: u1, -orig-id: 'arpeggio.part[i].params[6]'}
      arpeggio_part_params_7: {pos: 10, type: u1, -orig-id: 'arpeggio.part[i].params[7]'}
      arpeggio_part_params_8: {pos: 11, type: u1, -orig-id: 'arpeggio.part[i].params[8]'}
      arpeggio_part_params_9: {pos: 12, type: u1, -orig-id: 'arpeggio.part[i].params[9]'}
      arpeggio_part_params_10: {pos: 13, type: u1, -orig-id: 'arpeggio.part[i].params[10]'}
      arpeggio_part_params_11: {pos: 14, type: u1, -orig-id: 'arpeggio.part[i].params[11]'}
      arpeggio_part_params_12: {pos: 15, type: u1, -orig-id: 'arpeggio.part[i].params[12]'}
      arpeggio_part_params_13: {pos: 16, type: u1, -orig-id: 'arpeggio.part[i].params[13]'}
      arpeggio_part_params_14: {pos: 17, type: u1, -orig-id: 'arpeggio.part[i].params[14]'}
      arpeggio_part_params_15: {value: '(data[18] << 7 | data[19]) & 0xff', -orig-id: 'arpeggio.part[i].params[15]'}
      arpeggio_part_params_16: {value: '(data[20] << 7 | data[21]) & 0xff', -orig-id: 'arpeggio.part[i].params[16]'}
      arpeggio_part_params_17: {value: '(data[26] << 7 | data[27]) & 0xff', -orig-id: 'arpeggio.part[i].params[17]'}
      arpeggio_part_params_20: {pos: 28, type: u1, -orig-id: 'arpeggio.part[i].params[20]'}
      arpeggio_part_params_21: {pos: 29, type: u1, -orig-id: 'arpeggio.part[i].params[21]'}
      arpeggio_part_params_18: {pos: 30, type: u1, -orig-id: 'arpeggio.part[i].params[18]'}
      arpeggio_part_params_19: {pos: 31, type: u1, -orig-id: 'arpeggio.part[i].params[19]'}
      arpeggio_part_params_22: {pos: 32, type: u1, -orig-id: 'arpeggio.part[i].params[22]'}
      arpeggio_part_params_23: {pos: 33, type: u1, -orig-id: 'arpeggio.part[i].params[23]'}
      arpeggio_part_params_24: {pos: 34, type: u1, -orig-id: 'arpeggio.part[i].params[24]'}
      arpeggio_part_params_25: {pos: 35, type: u1, -orig-id: 'arpeggio.part[i].params[25]'}
      arpeggio_part_params_26: {value: '(data[36] << 7 | data[37]) & 0xff', -orig-id: 'arpeggio.part[i].params[26]'}
      arpeggio_part_params_27: {value: '(data[38] << 7 | data[39]) & 0xff', -orig-id: 'arpeggio.part[i].params[27]'}
      arpeggio_part_params_28: {value: '(data[40] << 7 | data[41]) & 0xff', -orig-id: 'arpeggio.part[i].params[28]'}
      arpeggio_part_params_29: {value: '(data[42] << 7 | data[43]) & 0xff', -orig-id: 'arpeggio.part[i].params[29]'}
      arpeggio_part_params_30: {value: '(data[44] << 7 | data[45]) & 0xff', -orig-id: 'arpeggio.part[i].params[30]'}
      arpeggio_part_params_31: {value: '(data[46] << 7 | data[47]) & 0xff', -orig-id: 'arpeggio.part[i].params[31]'}
      arpeggio_part_params_32: {value: '(data[48] << 7 | data[49]) & 0xff', -orig-id: 'arpeggio.part[i].params[32]'}
      arpeggio_part_params_33: {value: '(data[50] << 7 | data[51]) & 0xff', -orig-id: 'arpeggio.part[i].params[33]'}
      arpeggio_part_params_34: {value: '(data[52] << 7 | data[53]) & 0xff', -orig-id: 'arpeggio.part[i].params[34]'}
      arpeggio_part_params_35: {value: '(data[54] << 7 | data[55]) & 0xff', -orig-id: 'arpeggio.part[i].params[35]'}
      arpeggio_part_params_36: {value: '(data[56] << 7 | data[57]) & 0xff', -orig-id: 'arpeggio.part[i].params[36]'}
      arpeggio_part_params_37: {value: '(data[58] << 7 | data[59]) & 0xff', -orig-id: 'arpeggio.part[i].params[37]'}
      arpeggio_part_six_0: {value: 'data[60] << 7 | data[61]', -orig-id: 'arpeggio.part[i].six[0]'}
      arpeggio_part_six_1: {value: 'data[62] << 7 | data[63]', -orig-id: 'arpeggio.part[i].six[1]'}
      arpeggio_part_six_2: {value: 'data[64] << 7 | data[65]', -orig-id: 'arpeggio.part[i].six[2]'}
      arpeggio_part_six_3: {value: 'data[66] << 7 | data[67]', -orig-id: 'arpeggio.part[i].six[3]'}
      arpeggio_part_six_4: {value: 'data[68] << 7 | data[69]', -orig-id: 'arpeggio.part[i].six[4]'}
      arpeggio_part_six_5: {value: 'data[70] << 7 | data[71]', -orig-id: 'arpeggio.part[i].six[5]'}
  audio_input_part_of_a_multi_or_performance:
    doc: Audio input part of a multi or performance.
    params:
      - id: i
        type: u1
        doc: Which of them, from 0.
    seq:
      - id: data
        size: 8
    instances:
      multi_ad_part_params_0: {pos: 0, type: u1, -orig-id: 'multi.adPart[i].params[0]'}
      multi_ad_part_params_1: {pos: 1, type: u1, -orig-id: 'multi.adPart[i].params[1]'}
      multi_ad_part_params_2: {pos: 2, type: u1, -orig-id: 'multi.adPart[i].params[2]'}
      multi_ad_part_params_3: {pos: 3, type: u1, -orig-id: 'multi.adPart[i].params[3]'}
      multi_ad_part_params_4: {pos: 4, type: u1, -orig-id: 'multi.adPart[i].params[4]'}
      multi_ad_part_params_5: {pos: 6, type: u1, -orig-id: 'multi.adPart[i].params[5]'}
  master_common:
    doc: Master common.
    seq:
      - id: data
        size: 32
    instances:
      master_name: {pos: 0, size: 20, type: str, encoding: ISO-8859-1, terminator: 0, -orig-id: 'master.name'}
      master_common_0: {pos: 25, type: u1, -orig-id: 'master.common[0]'}
      master_common_1: {pos: 26, type: u1, -orig-id: 'master.common[1]'}
      master_common_2: {pos: 27, type: u1, -orig-id: 'master.common[2]'}
      master_common_3: {pos: 28, type: u1, -orig-id: 'master.common[3]'}
      master_common_4: {pos: 29, type: u1, -orig-id: 'master.common[4]'}
      master_common_5: {value: 'data[30] & 0x0f', -orig-id: 'master.common[5]'}
      master_common_6: {value: 'data[30] >> 4', -orig-id: 'master.common[6]'}
      master_common_7: {pos: 31, type: u1, -orig-id: 'master.common[7]'}
  master_zone:
    doc: Master zone.
    params:
      - id: i
        type: u1
        doc: Which of them, from 0.
    seq:
      - id: data
        size: 16
    instances:
      master_zone_params_1: {value: '(data[0] & 0x10) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[1]'}
      master_zone_params_2: {value: '(data[0] & 0x20) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[2]'}
      master_zone_params_0: {value: 'data[0] & 0x0f', -orig-id: 'master.zone[i].params[0]'}
      master_zone_params_3: {pos: 1, type: u1, -orig-id: 'master.zone[i].params[3]'}
      master_zone_params_4: {pos: 2, type: u1, -orig-id: 'master.zone[i].params[4]'}
      master_zone_params_5: {pos: 3, type: u1, -orig-id: 'master.zone[i].params[5]'}
      master_zone_params_6: {pos: 4, type: u1, -orig-id: 'master.zone[i].params[6]'}
      master_zone_params_7: {pos: 6, type: u1, -orig-id: 'master.zone[i].params[7]'}
      master_zone_params_8: {pos: 7, type: u1, -orig-id: 'master.zone[i].params[8]'}
      master_zone_params_9: {pos: 8, type: u1, -orig-id: 'master.zone[i].params[9]'}
      master_zone_params_10: {pos: 9, type: u1, -orig-id: 'master.zone[i].params[10]'}
      master_zone_params_11: {pos: 10, type: u1, -orig-id: 'master.zone[i].params[11]'}
      master_zone_params_12: {value: '(data[11] & 0x01) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[12]'}
      master_zone_params_13: {value: '(data[11] & 0x02) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[13]'}
      master_zone_params_16: {value: '(data[11] & 0x04) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[16]'}
      master_zone_params_14: {value: '(data[11] & 0x08) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[14]'}
      master_zone_params_15: {value: '(data[11] & 0x10) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[15]'}
      master_zone_params_17: {value: '(data[12] & 0x01) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[17]'}
      master_zone_params_18: {value: '(data[12] & 0x02) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[18]'}
      master_zone_params_19: {value: '(data[12] & 0x04) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[19]'}
      master_zone_params_20: {value: '(data[12] & 0x08) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[20]'}
      master_zone_params_21: {value: '(data[12] & 0x10) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[21]'}
      master_zone_params_22: {value: '(data[12] & 0x20) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[22]'}
      master_zone_params_23: {value: '(data[12] & 0x40) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[23]'}
      master_zone_params_24: {value: '(data[13] & 0x01) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[24]'}
      master_zone_params_25: {value: '(data[13] & 0x02) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[25]'}
      master_zone_params_26: {value: '(data[13] & 0x04) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[26]'}
      master_zone_params_28: {value: '(data[13] & 0x10) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[28]'}
      master_zone_params_29: {value: '(data[13] & 0x20) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[29]'}
      master_zone_params_30: {value: '(data[13] & 0x40) != 0 ? 1 : 0', -orig-id: 'master.zone[i].params[30]'}
      master_zone_params_31: {pos: 14, type: u1, -orig-id: 'master.zone[i].params[31]'}
      master_zone_params_32: {pos: 15, type: u1, -orig-id: 'master.zone[i].params[32]'}
  remote_common:
    doc: Remote common.
    seq:
      - id: data
        size: 27
    instances:
      remote_name1: {pos: 0, size: 13, type: str, encoding: ISO-8859-1, terminator: 0, -orig-id: 'remote.name1'}
      remote_name2: {pos: 13, size: 12, type: str, encoding: ISO-8859-1, terminator: 0, -orig-id: 'remote.name2'}
      remote_common_0: {pos: 25, type: u1, -orig-id: 'remote.common[0]'}
      remote_common_1: {pos: 26, type: u1, -orig-id: 'remote.common[1]'}
  remote_controller:
    doc: Remote controller.
    params:
      - id: i
        type: u1
        doc: Which of them, from 0.
    seq:
      - id: data
        size: 26
    instances:
      remote_controller_name1: {pos: 0, size: 9, type: str, encoding: ISO-8859-1, terminator: 0, -orig-id: 'remote.controller[i].name1'}
      remote_controller_name2: {pos: 9, size: 15, type: str, encoding: ISO-8859-1, terminator: 0, -orig-id: 'remote.controller[i].name2'}
      remote_controller_params_0: {pos: 24, type: u1, -orig-id: 'remote.controller[i].params[0]'}
      remote_controller_params_1: {pos: 25, type: u1, -orig-id: 'remote.controller[i].params[1]'}
  system_common:
    doc: System common.
    seq:
      - id: data
        size: 68
    instances:
      system_common_0: {pos: 0, type: u1, -orig-id: 'system.common[0]'}
      system_common_1: {pos: 1, type: u1, -orig-id: 'system.common[1]'}
      system_tune_0: {value: '(data[2] & 0x0f) << 12 | (data[3] & 0x0f) << 8 | (data[4] & 0x0f) << 4 | data[5] & 0x0f', -orig-id: 'system.tune[0]'}
      system_common_2: {pos: 6, type: u1, -orig-id: 'system.common[2]'}
      system_common_3: {pos: 7, type: u1, -orig-id: 'system.common[3]'}
      system_common_4: {pos: 8, type: u1, -orig-id: 'system.common[4]'}
      system_common_5: {pos: 9, type: u1, -orig-id: 'system.common[5]'}
      system_common_6: {pos: 10, type: u1, -orig-id: 'system.common[6]'}
      system_common_7: {pos: 11, type: u1, -orig-id: 'system.common[7]'}
      system_common_8: {pos: 13, type: u1, -orig-id: 'system.common[8]'}
      system_common_12: {pos: 17, type: u1, -orig-id: 'system.common[12]'}
      system_common_13: {pos: 18, type: u1, -orig-id: 'system.common[13]'}
      system_common_14: {pos: 20, type: u1, -orig-id: 'system.common[14]'}
      system_common_15: {pos: 21, type: u1, -orig-id: 'system.common[15]'}
      system_common_16: {pos: 24, type: u1, -orig-id: 'system.common[16]'}
      system_common_21: {pos: 27, type: u1, -orig-id: 'system.common[21]'}
      system_common_22: {pos: 28, type: u1, -orig-id: 'system.common[22]'}
      system_common_23: {pos: 29, type: u1, -orig-id: 'system.common[23]'}
      system_common_24: {pos: 30, type: u1, -orig-id: 'system.common[24]'}
      system_common_25: {pos: 31, type: u1, -orig-id: 'system.common[25]'}
      system_common_27: {pos: 35, type: u1, -orig-id: 'system.common[27]'}
      system_common_28: {pos: 40, type: u1, -orig-id: 'system.common[28]'}
      system_common_29: {pos: 41, type: u1, -orig-id: 'system.common[29]'}
      system_common_30: {pos: 42, type: u1, -orig-id: 'system.common[30]'}
      system_common_31: {pos: 43, type: u1, -orig-id: 'system.common[31]'}
      system_common_32: {pos: 44, type: u1, -orig-id: 'system.common[32]'}
      system_common_33: {pos: 45, type: u1, -orig-id: 'system.common[33]'}
      system_common_34: {pos: 46, type: u1, -orig-id: 'system.common[34]'}
      system_common_35: {pos: 47, type: u1, -orig-id: 'system.common[35]'}
      system_common_36: {pos: 48, type: u1, -orig-id: 'system.common[36]'}
      system_common_37: {pos: 49, type: u1, -orig-id: 'system.common[37]'}
      system_common_38: {pos: 50, type: u1, -orig-id: 'system.common[38]'}
      system_common_39: {pos: 51, type: u1, -orig-id: 'system.common[39]'}
      system_common_41: {pos: 53, type: u1, -orig-id: 'system.common[41]'}
      system_common_42: {pos: 55, type: u1, -orig-id: 'system.common[42]'}
      system_common_44: {pos: 57, type: u1, -orig-id: 'system.common[44]'}
      system_common_45: {pos: 59, type: u1, -orig-id: 'system.common[45]'}
      system_common_46: {pos: 60, type: u1, -orig-id: 'system.common[46]'}
      system_common_48: {pos: 62, type: u1, -orig-id: 'system.common[48]'}
      system_common_49: {pos: 64, type: u1, -orig-id: 'system.common[49]'}
  system_audio_input_part:
    doc: System audio input part.
    seq:
      - id: data
        size: 8
    instances:
      system_ad_part_0_params_0: {pos: 0, type: u1, -orig-id: 'system.adPart[0].params[0]'}
      system_ad_part_0_params_1: {pos: 1, type: u1, -orig-id: 'system.adPart[0].params[1]'}
      system_ad_part_0_params_2: {pos: 2, type: u1, -orig-id: 'system.adPart[0].params[2]'}
      system_ad_part_0_params_3: {pos: 3, type: u1, -orig-id: 'system.adPart[0].params[3]'}
      system_ad_part_0_params_4: {pos: 4, type: u1, -orig-id: 'system.adPart[0].params[4]'}
      system_ad_part_0_params_5: {pos: 6, type: u1, -orig-id: 'system.adPart[0].params[5]'}
  insertion_effect_a_of_the_systems_audio_input_part:
    doc: Insertion effect A of the system's audio input part.
    seq:
      - id: data
        size: 36
    instances:
      system_ad_part_0_insertion_a_0: {pos: 0, type: u1, -orig-id: 'system.adPart[0].insertionA[0]'}
      system_ad_part_0_insertion_a_1: {pos: 1, type: u1, -orig-id: 'system.adPart[0].insertionA[1]'}
      system_ad_part_0_insertion_a_4: {pos: 2, type: u1, -orig-id: 'system.adPart[0].insertionA[4]'}
      system_ad_part_0_insertion_a_5: {value: 'data[4] << 7 | data[5]', -orig-id: 'system.adPart[0].insertionA[5]'}
      system_ad_part_0_insertion_a_6: {value: 'data[6] << 7 | data[7]', -orig-id: 'system.adPart[0].insertionA[6]'}
      system_ad_part_0_insertion_a_7: {value: 'data[8] << 7 | data[9]', -orig-id: 'system.adPart[0].insertionA[7]'}
      system_ad_part_0_insertion_a_8: {value: 'data[10] << 7 | data[11]', -orig-id: 'system.adPart[0].insertionA[8]'}
      system_ad_part_0_insertion_a_9: {value: 'data[12] << 7 | data[13]', -orig-id: 'system.adPart[0].insertionA[9]'}
      system_ad_part_0_insertion_a_10: {value: 'data[14] << 7 | data[15]', -orig-id: 'system.adPart[0].insertionA[10]'}
      system_ad_part_0_insertion_a_11: {value: 'data[16] << 7 | data[17]', -orig-id: 'system.adPart[0].insertionA[11]'}
      system_ad_part_0_insertion_a_12: {value: 'data[18] << 7 | data[19]', -orig-id: 'system.adPart[0].insertionA[12]'}
      system_ad_part_0_insertion_a_13: {value: 'data[20] << 7 | data[21]', -orig-id: 'system.adPart[0].insertionA[13]'}
      system_ad_part_0_insertion_a_14: {value: 'data[22] << 7 | data[23]', -orig-id: 'system.adPart[0].insertionA[14]'}
      system_ad_part_0_insertion_a_15: {value: 'data[24] << 7 | data[25]', -orig-id: 'system.adPart[0].insertionA[15]'}
      system_ad_part_0_insertion_a_16: {value: 'data[26] << 7 | data[27]', -orig-id: 'system.adPart[0].insertionA[16]'}
      system_ad_part_0_insertion_a_17: {value: 'data[28] << 7 | data[29]', -orig-id: 'system.adPart[0].insertionA[17]'}
      system_ad_part_0_insertion_a_18: {value: 'data[30] << 7 | data[31]', -orig-id: 'system.adPart[0].insertionA[18]'}
      system_ad_part_0_insertion_a_19: {value: 'data[32] << 7 | data[33]', -orig-id: 'system.adPart[0].insertionA[19]'}
      system_ad_part_0_insertion_a_20: {value: 'data[34] << 7 | data[35]', -orig-id: 'system.adPart[0].insertionA[20]'}
  insertion_effect_b_of_the_systems_audio_input_part:
    doc: Insertion effect B of the system's audio input part.
    seq:
      - id: data
        size: 36
    instances:
      system_ad_part_0_insertion_b_0: {pos: 0, type: u1, -orig-id: 'system.adPart[0].insertionB[0]'}
      system_ad_part_0_insertion_b_1: {pos: 1, type: u1, -orig-id: 'system.adPart[0].insertionB[1]'}
      system_ad_part_0_insertion_b_4: {pos: 2, type: u1, -orig-id: 'system.adPart[0].insertionB[4]'}
      system_ad_part_0_insertion_b_5: {value: 'data[4] << 7 | data[5]', -orig-id: 'system.adPart[0].insertionB[5]'}
      system_ad_part_0_insertion_b_6: {value: 'data[6] << 7 | data[7]', -orig-id: 'system.adPart[0].insertionB[6]'}
      system_ad_part_0_insertion_b_7: {value: 'data[8] << 7 | data[9]', -orig-id: 'system.adPart[0].insertionB[7]'}
      system_ad_part_0_insertion_b_8: {value: 'data[10] << 7 | data[11]', -orig-id: 'system.adPart[0].insertionB[8]'}
      system_ad_part_0_insertion_b_9: {value: 'data[12] << 7 | data[13]', -orig-id: 'system.adPart[0].insertionB[9]'}
      system_ad_part_0_insertion_b_10: {value: 'data[14] << 7 | data[15]', -orig-id: 'system.adPart[0].insertionB[10]'}
      system_ad_part_0_insertion_b_11: {value: 'data[16] << 7 | data[17]', -orig-id: 'system.adPart[0].insertionB[11]'}
      system_ad_part_0_insertion_b_12: {value: 'data[18] << 7 | data[19]', -orig-id: 'system.adPart[0].insertionB[12]'}
      system_ad_part_0_insertion_b_13: {value: 'data[20] << 7 | data[21]', -orig-id: 'system.adPart[0].insertionB[13]'}
      system_ad_part_0_insertion_b_14: {value: 'data[22] << 7 | data[23]', -orig-id: 'system.adPart[0].insertionB[14]'}
      system_ad_part_0_insertion_b_15: {value: 'data[24] << 7 | data[25]', -orig-id: 'system.adPart[0].insertionB[15]'}
      system_ad_part_0_insertion_b_16: {value: 'data[26] << 7 | data[27]', -orig-id: 'system.adPart[0].insertionB[16]'}
      system_ad_part_0_insertion_b_17: {value: 'data[28] << 7 | data[29]', -orig-id: 'system.adPart[0].insertionB[17]'}
      system_ad_part_0_insertion_b_18: {value: 'data[30] << 7 | data[31]', -orig-id: 'system.adPart[0].insertionB[18]'}
      system_ad_part_0_insertion_b_19: {value: 'data[32] << 7 | data[33]', -orig-id: 'system.adPart[0].insertionB[19]'}
      system_ad_part_0_insertion_b_20: {value: 'data[34] << 7 | data[35]', -orig-id: 'system.adPart[0].insertionB[20]'}
  system_master_eq:
    doc: System master EQ.
    seq:
      - id: data
        size: 20
    instances:
      system_master_eq_0: {pos: 0, type: u1, -orig-id: 'system.masterEq[0]'}
      system_master_eq_1: {pos: 1, type: u1, -orig-id: 'system.masterEq[1]'}
      system_master_eq_2: {pos: 2, type: u1, -orig-id: 'system.masterEq[2]'}
      system_master_eq_3: {pos: 3, type: u1, -orig-id: 'system.masterEq[3]'}
      system_master_eq_4: {pos: 4, type: u1, -orig-id: 'system.masterEq[4]'}
      system_master_eq_5: {pos: 5, type: u1, -orig-id: 'system.masterEq[5]'}
      system_master_eq_6: {pos: 6, type: u1, -orig-id: 'system.masterEq[6]'}
      system_master_eq_8: {pos: 8, type: u1, -orig-id: 'system.masterEq[8]'}
      system_master_eq_9: {pos: 9, type: u1, -orig-id: 'system.masterEq[9]'}
      system_master_eq_10: {pos: 10, type: u1, -orig-id: 'system.masterEq[10]'}
      system_master_eq_11: {pos: 12, type: u1, -orig-id: 'system.masterEq[11]'}
      system_master_eq_12: {pos: 13, type: u1, -orig-id: 'system.masterEq[12]'}
      system_master_eq_13: {pos: 14, type: u1, -orig-id: 'system.masterEq[13]'}
      system_master_eq_14: {pos: 16, type: u1, -orig-id: 'system.masterEq[14]'}
      system_master_eq_15: {pos: 17, type: u1, -orig-id: 'system.masterEq[15]'}
      system_master_eq_16: {pos: 18, type: u1, -orig-id: 'system.masterEq[16]'}
      system_master_eq_17: {pos: 19, type: u1, -orig-id: 'system.masterEq[17]'}
  system_master_effect:
    doc: System master effect.
    seq:
      - id: data
        size: 38
    instances:
      system_master_effect_0: {pos: 0, type: u1, -orig-id: 'system.masterEffect[0]'}
      system_master_effect_1: {pos: 1, type: u1, -orig-id: 'system.masterEffect[1]'}
      system_master_effect_4: {pos: 2, type: u1, -orig-id: 'system.masterEffect[4]'}
      system_master_effect_5: {value: 'data[4] << 7 | data[5]', -orig-id: 'system.masterEffect[5]'}
      system_master_effect_6: {value: 'data[6] << 7 | data[7]', -orig-id: 'system.masterEffect[6]'}
      system_master_effect_7: {value: 'data[8] << 7 | data[9]', -orig-id: 'system.masterEffect[7]'}
      system_master_effect_8: {value: 'data[10] << 7 | data[11]', -orig-id: 'system.masterEffect[8]'}
      system_master_effect_9: {value: 'data[12] << 7 | data[13]', -orig-id: 'system.masterEffect[9]'}
      system_master_effect_10: {value: 'data[14] << 7 | data[15]', -orig-id: 'system.masterEffect[10]'}
      system_master_effect_11: {value: 'data[16] << 7 | data[17]', -orig-id: 'system.masterEffect[11]'}
      system_master_effect_12: {value: 'data[18] << 7 | data[19]', -orig-id: 'system.masterEffect[12]'}
      system_master_effect_13: {value: 'data[20] << 7 | data[21]', -orig-id: 'system.masterEffect[13]'}
      system_master_effect_14: {value: 'data[22] << 7 | data[23]', -orig-id: 'system.masterEffect[14]'}
      system_master_effect_15: {value: 'data[24] << 7 | data[25]', -orig-id: 'system.masterEffect[15]'}
      system_master_effect_16: {value: 'data[26] << 7 | data[27]', -orig-id: 'system.masterEffect[16]'}
      system_master_effect_17: {value: 'data[28] << 7 | data[29]', -orig-id: 'system.masterEffect[17]'}
      system_master_effect_18: {value: 'data[30] << 7 | data[31]', -orig-id: 'system.masterEffect[18]'}
      system_master_effect_19: {value: 'data[32] << 7 | data[33]', -orig-id: 'system.masterEffect[19]'}
      system_master_effect_20: {value: 'data[34] << 7 | data[35]', -orig-id: 'system.masterEffect[20]'}
      system_master_effect_settings_0: {pos: 36, type: u1, -orig-id: 'system.masterEffectSettings[0]'}
  quick_setup:
    doc: Quick setup.
    params:
      - id: i
        type: u1
        doc: Which of them, from 0.
    seq:
      - id: data
        size: 10
    instances:
      system_quick_setup_name: {pos: 0, size: 8, type: str, encoding: ISO-8859-1, terminator: 0, -orig-id: 'system.quickSetup[i].name'}
      system_quick_setup_params_0: {pos: 8, type: u1, -orig-id: 'system.quickSetup[i].params[0]'}
      system_quick_setup_params_1: {pos: 9, type: u1, -orig-id: 'system.quickSetup[i].params[1]'}
  system_sequencer:
    doc: System sequencer.
    seq:
      - id: data
        size: 22
    instances:
      system_sequencer_0: {pos: 0, type: u1, -orig-id: 'system.sequencer[0]'}
      system_sequencer_1: {pos: 1, type: u1, -orig-id: 'system.sequencer[1]'}
      system_sequencer_2: {pos: 2, type: u1, -orig-id: 'system.sequencer[2]'}
      system_sequencer_3: {pos: 3, type: u1, -orig-id: 'system.sequencer[3]'}
      system_sequencer_4: {pos: 11, type: u1, -orig-id: 'system.sequencer[4]'}
      system_sequencer_5: {pos: 12, type: u1, -orig-id: 'system.sequencer[5]'}
      system_sequencer_6: {pos: 13, type: u1, -orig-id: 'system.sequencer[6]'}
  system_remote:
    doc: System remote.
    seq:
      - id: data
        size: 5
    instances:
      system_remote_0: {pos: 0, type: u1, -orig-id: 'system.remote[0]'}
      system_remote_1: {pos: 1, type: u1, -orig-id: 'system.remote[1]'}
