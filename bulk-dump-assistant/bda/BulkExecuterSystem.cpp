#include "BulkExecuterSystem.h"

#include "ModelNodes.h"
#include "SystemLayouts.h"
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

using System = CMA::SystemParameterModel;

}  // namespace

BDAErr BulkExecuterSystemCommon::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  System* const system = getJobTools().getSystemModel();
  const Targets<SystemCommon::kLayout> targets{{from(system, &System::getCommon), from(system, &System::getTune)}};
  return convertBlock<SystemCommon::kLayout>(kCommon, targets, data, length, isReceive, BDA_INFO_SYSTEM);
}

BDAErr BulkExecuterSystemAd::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  System::AdPartNode* const part =
      from(getJobTools().getSystemModel(), &System::getAdPart, std::uint32_t{getBlockIndex()});
  const Targets<kAdPart> targets{{from(part, &System::AdPartNode::getParams)}};
  return convertBlock<kAdPart>(kAd, targets, data, length, isReceive, BDA_INFO_SYSTEM);
}

// The order of its tests: model, block type, length.
BDAErr BulkExecuterSystemAdInsAB::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  System::AdPartNode* const part =
      from(getJobTools().getSystemModel(), &System::getAdPart, std::uint32_t{getBlockIndex()});
  if (part == nullptr) {
    kAdInsAB.noModel();
    return BDA_ERR;
  }
  if (getBlockType() != kInsertionABlock && getBlockType() != kInsertionBBlock) {
    kWrongInsertion();
    return BDA_ERR;
  }
  const Targets<kInsEffect> targets{
      {getBlockType() == kInsertionABlock ? part->getInsertionA() : part->getInsertionB()}};
  return convertBlock<kInsEffect>(kAdInsAB, targets, data, length, isReceive, BDA_INFO_SYSTEM);
}

BDAErr BulkExecuterSystemMeq::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const Targets<kEq> targets{{from(getJobTools().getSystemModel(), &System::getMasterEq)}};
  return convertBlock<kEq>(kMeq, targets, data, length, isReceive, BDA_INFO_SYSTEM);
}

BDAErr BulkExecuterSystemMef::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  System* const system = getJobTools().getSystemModel();
  const Targets<kMasterEffect> targets{
      {from(system, &System::getMasterEffect), from(system, &System::getMasterEffectSettings)}};
  return convertBlock<kMasterEffect>(kMef, targets, data, length, isReceive, BDA_INFO_SYSTEM);
}

BDAErr BulkExecuterSystemUserQuickSetup::execBulkBlock(std::uint8_t* data, std::uint32_t length,
                                                       std::uint8_t isReceive) {
  const std::uint32_t number = getAddress().getMid() & 0x0FU;
  System::QuickSetupNode* const quickSetup = from(getJobTools().getSystemModel(), &System::getQuickSetup, number);
  const Targets<SystemUserQuickSetup::kLayout> targets{{from(quickSetup, &System::QuickSetupNode::getParams)},
                                                       {from(quickSetup, &System::QuickSetupNode::getName)}};
  return convertBlock<SystemUserQuickSetup::kLayout>(kQuickSetup, targets, data, length, isReceive, BDA_INFO_SYSTEM);
}

BDAErr BulkExecuterSystemSeq::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const Targets<SystemSeq::kLayout> targets{{from(getJobTools().getSystemModel(), &System::getSequencer)}};
  return convertBlock<SystemSeq::kLayout>(kSeq, targets, data, length, isReceive, BDA_INFO_SYSTEM);
}

BDAErr BulkExecuterSystemRemote::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  const Targets<SystemRemote::kLayout> targets{{from(getJobTools().getSystemModel(), &System::getRemote)}};
  return convertBlock<SystemRemote::kLayout>(kRemote, targets, data, length, isReceive, BDA_INFO_SYSTEM);
}

}  // namespace BDA
