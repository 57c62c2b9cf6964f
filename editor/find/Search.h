#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "contents/Fingerprint.h"
#include "find/Candidates.h"
#include "find/Condition.h"
#include "find/NamePattern.h"

namespace Editor {

// What a search is for. What is found fits all of it.
struct Wanted {
  std::vector<NamePattern> names;
  std::optional<ContentKind> kind;
  bool onlyFavourites = false;
  std::vector<Condition> conditions;
  // These compare contents of one kind, all names left aside. Neither is found itself.
  std::optional<Candidate> sameAs;  // everything else is equal
  std::optional<Candidate> like;    // the nearest first; opaque ones are near only where their bytes are equal
  bool duplicates = false;          // of what fits everything else, what is there more than once but for its name
  bool hashes = false;              // each has its hash
};

struct Found {
  std::string source;
  Candidate content;                   // without its bytes
  std::string hash;                    // where hashes are wanted, as Fingerprint has it
  std::optional<std::uint64_t> group;  // of duplicates: from 1
  std::optional<double> likeness;      // to what it shall be like: the share of equal numbers, 0 to 1
};

// Looks at candidates, one after the other. Names are looked at first: what they rule out costs no models.
class Search {
 public:
  using Visit = std::function<void(const Found&)>;

  struct Source {
    std::string name;
    bool isOfAddresses = false;  // the library that `sameAs` and `like` are from
  };

  // Visits each as soon as it is found, or all in finish() where they have to be put in order.
  Search(Wanted wanted, Visit visit);

  void look(const Source& source, Candidate candidate);
  // Once, at the end. How many were found.
  std::uint64_t finish();

 private:
  class Opened;
  bool isWanted(Opened& candidate) const;
  bool isItself(const Candidate& candidate) const;
  void group();
  void tell(const Found& found);

  // What is compared with every candidate.
  struct Compared {
    explicit Compared(const Candidate& candidate);

    ContentKind kind;
    Nameless nameless;
    std::optional<ModelValues> values;  // nothing: it is opaque
  };
  std::optional<double> likenessTo(const Compared& like, Opened& candidate) const;

  const Wanted wanted_;
  const Visit visit_;
  std::optional<Compared> sameAs_;
  std::optional<Compared> like_;
  std::uint64_t count_ = 0;
  std::vector<Found> waiting_;
  // Of duplicates: the number of what is the same, in the order in which it first came, by kind and nameless bytes; and
  // the number of each that waits.
  std::unordered_map<std::string, std::size_t> sames_;
  std::vector<std::size_t> sameOf_;
};

}  // namespace Editor
