#include "BulkExecuterSystem.h"

#include "LayoutTargets.h"
#include "bda/platform/CMA/JobTools.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\BulkExecuterSystem.cpp";

constexpr BlockFailures kCommon =
    blockFailures(kFile, "BDA::BulkExecuterSystemCommon::execBulkBlock",
                  "Wrong data length. (System Common): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kAd = blockFailures(kFile, "BDA::BulkExecuterSystemAd::execBulkBlock",
                                            "Wrong data length. (System AD): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kAdInsAB =
    blockFailures(kFile, "BDA::BulkExecuterSystemAdInsAB::execBulkBlock",
                  "Wrong data length. (System AD Ins AB): Correct = [%02x], Data = [%02x]\n");
constexpr Failure<> kWrongInsertion{{kFile, Line::ofThisSource(), "BDA::BulkExecuterSystemAdInsAB::execBulkBlock"},
                                    Refusal::wrongBlockType,
                                    "Multi AD Part Ins Block Error !\n"};
constexpr BlockFailures kMeq = blockFailures(kFile, "BDA::BulkExecuterSystemMeq::execBulkBlock",
                                             "Wrong data length. (System MEQ): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kMef = blockFailures(kFile, "BDA::BulkExecuterSystemMef::execBulkBlock",
                                             "Wrong data length. (System MEF): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kQuickSetup =
    blockFailures(kFile, "BDA::BulkExecuterSystemUserQuickSetup::execBulkBlock",
                  "Wrong data length. (User Quick Setup): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kSeq = blockFailures(kFile, "BDA::BulkExecuterSystemSeq::execBulkBlock",
                                             "Wrong data length. (Seq): Correct = [%02x], Data = [%02x]\n");
constexpr BlockFailures kRemote = blockFailures(kFile, "BDA::BulkExecuterSystemRemote::execBulkBlock",
                                                "Wrong data length. (Remote): Correct = [%02x], Data = [%02x]\n");

constexpr std::uint32_t kInsertionABlock = 51;
constexpr std::uint32_t kInsertionBBlock = 52;

}  // namespace

BDAErr BulkExecuterSystemCommon::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const auto targets = SystemCommon::targetsIn(getJobTools().getSystemModel());
  return convertBlock<SystemCommon::kLayout>(kCommon, targets, data, length, isReceive, BDA_INFO_SYSTEM);
}

BDAErr BulkExecuterSystemAd::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const auto targets = SystemAd::targetsIn(SystemAd::partIn(getJobTools().getSystemModel(), getBlockIndex()));
  return convertBlock<kAdPart>(kAd, targets, data, length, isReceive, BDA_INFO_SYSTEM);
}

// The order of its tests: model, block type, length.
BDAErr BulkExecuterSystemAdInsAB::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  System::AdPartNode* const part = SystemAd::partIn(getJobTools().getSystemModel(), getBlockIndex());
  if (part == nullptr) {
    kAdInsAB.noModel();
    return BDA_ERR;
  }
  if (getBlockType() != kInsertionABlock && getBlockType() != kInsertionBBlock) {
    kWrongInsertion();
    return BDA_ERR;
  }
  const auto targets = getBlockType() == kInsertionABlock ? SystemAd::targetsOfA(part) : SystemAd::targetsOfB(part);
  return convertBlock<kInsEffect>(kAdInsAB, targets, data, length, isReceive, BDA_INFO_SYSTEM);
}

BDAErr BulkExecuterSystemMeq::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const auto targets = SystemEq::targetsIn(getJobTools().getSystemModel());
  return convertBlock<kEq>(kMeq, targets, data, length, isReceive, BDA_INFO_SYSTEM);
}

BDAErr BulkExecuterSystemMef::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const auto targets = SystemEffect::targetsIn(getJobTools().getSystemModel());
  return convertBlock<kMasterEffect>(kMef, targets, data, length, isReceive, BDA_INFO_SYSTEM);
}

BDAErr BulkExecuterSystemUserQuickSetup::execBulkBlock(std::uint8_t* data, std::uint32_t length,
                                                       std::uint8_t isReceive) {
  const std::uint32_t number = getAddress().getMid() & 0x0FU;
  const auto targets = SystemUserQuickSetup::targetsIn(getJobTools().getSystemModel(), number);
  return convertBlock<SystemUserQuickSetup::kLayout>(kQuickSetup, targets, data, length, isReceive, BDA_INFO_SYSTEM);
}

BDAErr BulkExecuterSystemSeq::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const auto targets = SystemSeq::targetsIn(getJobTools().getSystemModel());
  return convertBlock<SystemSeq::kLayout>(kSeq, targets, data, length, isReceive, BDA_INFO_SYSTEM);
}

BDAErr BulkExecuterSystemRemote::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const auto targets = SystemRemote::targetsIn(getJobTools().getSystemModel());
  return convertBlock<SystemRemote::kLayout>(kRemote, targets, data, length, isReceive, BDA_INFO_SYSTEM);
}

}  // namespace BDA
