#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "convert/Placing.h"
#include "convert/Selection.h"
#include "messages/Verification.h"

namespace Editor {

// Why nothing of a batch is written.
class ConversionError : public std::runtime_error {
 public:
  enum class Kind : std::uint8_t {
    refused,   // what it takes is not whole, or nothing is left
    unusable,  // what there is does not fit
    noPlace,   // nobody says where a unit goes
  };

  ConversionError(Kind kind, const std::string& text) : std::runtime_error(text), kind_(kind) {}
  Kind kind() const { return kind_; }

 private:
  Kind kind_;
};

// What is done with a batch on its way from files into files: units are chosen, and addressed to other places.
class Conversion {
 public:
  struct Options {
    std::vector<std::string> select = {};  // the words of addresses: only these units; none: all messages
    std::string place = {};                // where units are addressed to; "": they stay
    std::optional<unsigned> device = {};   // whom all messages are for then, from 1
  };

  // What is told while it is done, in order.
  class Listener {
   public:
    virtual void missing(const std::string& text) = 0;  // something is not there, or not in what is written
    virtual void broken(const std::vector<MessageFault>& faults) = 0;
    virtual void note(const std::string& text) = 0;
    virtual void placing() {}  // the next unit; what it throws ends it

   protected:
    ~Listener() = default;
  };

  // Throws TargetError (noTarget).
  explicit Conversion(Options options);

  // Throws ConversionError, and TargetError where a unit does not fit its place.
  void apply(Batch& batch, UnitModels& models, Listener& listener) const;

 private:
  void place(Batch& batch, UnitModels& models, Listener& listener) const;
  void requirePlaces(const Batch& batch, Listener& listener) const;

  const Options options_;
  const std::vector<Destination> destinations_;
  const Selection selection_;
};

// What is broken in a batch, units and messages.
std::vector<MessageFault> faultsIn(const Batch& batch);

}  // namespace Editor
