#include "find/Search.h"

#include <algorithm>
#include <utility>

#include "contents/ContentFormat.h"

namespace Editor {

namespace {

std::optional<ModelValues> openValues(const Candidate& candidate) {
  ModelSet models = emptySetFor(candidate.kind);
  if (haveSameShape(models, ModelSet()) || decodeContent(candidate.bytes, models)) return std::nullopt;
  return valuesOf(models);
}

}  // namespace

// A candidate whose bytes are read when somebody asks what is in them, and once.
class Search::Opened {
 public:
  explicit Opened(const Candidate& candidate) : candidate_(candidate) {}

  const Candidate& operator*() const { return candidate_; }
  const Candidate* operator->() const { return &candidate_; }

  // Null: it is opaque.
  const ModelValues* values() {
    if (!areRead_) values_ = openValues(candidate_);
    areRead_ = true;
    return values_ ? &*values_ : nullptr;
  }
  const Nameless& nameless() {
    if (!nameless_) nameless_ = namelessOf(emptySetFor(candidate_.kind), candidate_.bytes);
    return *nameless_;
  }

 private:
  const Candidate& candidate_;
  bool areRead_ = false;
  std::optional<ModelValues> values_;
  std::optional<Nameless> nameless_;
};

Search::Compared::Compared(const Candidate& candidate)
    : kind(candidate.kind),
      nameless(namelessOf(emptySetFor(candidate.kind), candidate.bytes)),
      values(openValues(candidate)) {}

Search::Search(Wanted wanted, Visit visit) : wanted_(std::move(wanted)), visit_(std::move(visit)) {
  if (wanted_.sameAs) sameAs_.emplace(*wanted_.sameAs);
  if (wanted_.like) like_.emplace(*wanted_.like);
}

void Search::look(const Source& source, Candidate candidate) {
  Opened opened(candidate);
  if ((source.isOfAddresses && isItself(candidate)) || !isWanted(opened)) return;
  Found found;
  found.source = source.name;
  if (like_ && !(found.likeness = likenessTo(*like_, opened))) return;
  for (const Condition& condition : wanted_.conditions) {
    Condition::Asked asked = condition.asked(candidate.kind, *opened.values());
    const auto isSame = [&](const Condition::Asked& other) { return other.path == asked.path; };
    if (std::none_of(found.asked.begin(), found.asked.end(), isSame)) found.asked.push_back(std::move(asked));
  }
  if (wanted_.hashes) found.hash = fingerprintOf(opened.nameless()).hash;
  if (wanted_.duplicates) {
    const std::vector<std::uint8_t>& bytes = opened.nameless().bytes;
    std::string key{char(candidate.kind), char(opened.nameless().isOpaque)};
    key.append(bytes.begin(), bytes.end());
    sameOf_.push_back(sames_.try_emplace(std::move(key), sames_.size()).first->second);
  }
  candidate.bytes = {};
  found.content = std::move(candidate);
  if (like_ || wanted_.duplicates)
    waiting_.push_back(std::move(found));
  else
    tell(found);
}

bool Search::isItself(const Candidate& candidate) const {
  return (wanted_.sameAs && wanted_.sameAs->place == candidate.place) ||
         (wanted_.like && wanted_.like->place == candidate.place);
}

// What costs least comes first.
bool Search::isWanted(Opened& candidate) const {
  if (wanted_.kind && candidate->kind != *wanted_.kind) return false;
  if (wanted_.onlyFavourites && candidate->favourite.value_or(0) == 0) return false;
  if (!std::all_of(wanted_.names.begin(), wanted_.names.end(),
                   [&](const NamePattern& name) { return name.fits(candidate->name); }))
    return false;
  if (sameAs_ && sameAs_->kind != candidate->kind) return false;
  if (like_ && like_->kind != candidate->kind) return false;
  if (!std::all_of(wanted_.conditions.begin(), wanted_.conditions.end(), [&](const Condition& condition) {
        return candidate.values() != nullptr && condition.holds(candidate->kind, *candidate.values());
      }))
    return false;
  return !sameAs_ || sameAs_->nameless == candidate.nameless();
}

// Nothing: they cannot be compared.
std::optional<double> Search::likenessTo(const Compared& like, Opened& candidate) const {
  if (like.values && candidate.values() != nullptr) return likenessOf(*like.values, *candidate.values());
  return like.nameless == candidate.nameless() ? std::optional(1.0) : std::nullopt;
}

std::uint64_t Search::finish() {
  if (wanted_.duplicates)
    group();
  else if (like_)
    std::stable_sort(waiting_.begin(), waiting_.end(),
                     [](const Found& a, const Found& b) { return *a.likeness > *b.likeness; });
  for (const Found& found : waiting_) tell(found);
  return count_;
}

// Puts those that are the same side by side, numbers them, and drops what is there once. All of a group are equally
// like anything else.
void Search::group() {
  std::vector<std::vector<Found>> groups(sames_.size());
  for (std::size_t i = 0; i < waiting_.size(); ++i) groups[sameOf_[i]].push_back(std::move(waiting_[i]));
  if (like_)
    std::stable_sort(groups.begin(), groups.end(),
                     [](const auto& a, const auto& b) { return *a.front().likeness > *b.front().likeness; });
  waiting_.clear();
  std::uint64_t number = 0;
  for (std::vector<Found>& same : groups) {
    if (same.size() < 2) continue;
    ++number;
    for (Found& found : same) {
      found.group = number;
      waiting_.push_back(std::move(found));
    }
  }
}

void Search::tell(const Found& found) {
  ++count_;
  visit_(found);
}

}  // namespace Editor
