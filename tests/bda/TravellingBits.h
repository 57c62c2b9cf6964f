#pragma once

// Which bits of a block's data bytes travel, found out by trying each of them.

#include <array>
#include <string>
#include <vector>

#include "Layout.h"
#include "support/Bytes.h"

namespace BDA {

class TravellingBits {
 public:
  // Bit by bit: whether turning it over, alone among zeros or among ones, makes the rows receive anything else, or
  // whether some value of the parameters has it dumped as 1.
  static Testing::Bytes of(const std::vector<Row>& rows, std::size_t length) {
    TravellingBits experiment(rows, length);
    for (const std::uint8_t background : {std::uint8_t{0x00}, std::uint8_t{0xFF}}) experiment.receiveOn(background);
    experiment.dumpValue(0xFFFF);
    for (unsigned bit = 1; bit < 0x10000; bit *= 2) experiment.dumpValue(std::uint16_t(bit));
    return experiment.bits_;
  }

 private:
  struct Group : CMA::ParameterGroup {
    std::array<std::uint16_t, 160> values{};

    bool get(std::uint8_t* value, std::uint16_t index) const override {
      *value = std::uint8_t(values.at(index));
      return true;
    }
    bool get(std::uint16_t* value, std::uint16_t index) const override {
      *value = values.at(index);
      return true;
    }
    bool set(const std::uint8_t* value, std::uint16_t index, int /*flag*/) override {
      values.at(index) = *value;
      return true;
    }
    bool set(const std::uint16_t* value, std::uint16_t index, int /*flag*/) override {
      values.at(index) = *value;
      return true;
    }
    bool operator==(const Group& other) const { return values == other.values; }
  };
  struct Name : ModelSrv::ModelPart {
    std::string text;

    void setToServer(const char* value, int /*index*/) override { text = value; }
    void getFromServer(char* buffer, std::size_t capacity) const override { text.copy(buffer, capacity); }
    bool operator==(const Name& other) const { return text == other.text; }
  };
  struct Model {
    std::array<Group, 18> groups;  // as many as a multi's common block has
    std::array<Name, 2> names;
    bool operator==(const Model& other) const { return groups == other.groups && names == other.names; }
  };

  TravellingBits(const std::vector<Row>& rows, std::size_t length) : rows_(rows), bits_(length) {}

  void convert(Model& model, Testing::Bytes& data, std::uint8_t isReceive) const {
    std::array<CMA::ParameterGroup*, 18> groups{};
    for (std::size_t i = 0; i < groups.size(); ++i) groups.at(i) = &model.groups.at(i);
    const std::array<ModelSrv::ModelPart*, 2> names{&model.names[0], &model.names[1]};
    convertRows(rows_, groups, names, data.data(), isReceive);
  }
  Model received(Testing::Bytes data) const {
    Model model;
    convert(model, data, 1);
    return model;
  }
  void receiveOn(std::uint8_t background) {
    Testing::Bytes data(bits_.size(), background);
    const Model before = received(data);
    for (std::size_t byte = 0; byte < data.size(); ++byte)
      for (unsigned bit = 1; bit < 0x100; bit *= 2) {
        data[byte] = std::uint8_t(data[byte] ^ bit);
        if (!(received(data) == before)) bits_[byte] = std::uint8_t(bits_[byte] | bit);
        data[byte] = background;
      }
  }
  void dumpValue(std::uint16_t value) {
    Model model;
    for (Group& group : model.groups) group.values.fill(value);
    for (Name& name : model.names) name.text.assign(bits_.size(), char(value & 0xFF));
    Testing::Bytes data(bits_.size());
    convert(model, data, 0);
    for (std::size_t byte = 0; byte < data.size(); ++byte) bits_[byte] = std::uint8_t(bits_[byte] | data[byte]);
  }

  const std::vector<Row>& rows_;
  Testing::Bytes bits_;
};

}  // namespace BDA
