#include "BulkExecuterFavorite.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\BulkExecuterFavorite.cpp";
constexpr const char* kForBulkDump = "BDA::BulkExecuterFavorite::execBulkBlockForBulkDump";
constexpr const char* kForBulkReq = "BDA::BulkExecuterFavorite::execBulkBlockForBulkReq";
constexpr Failure<unsigned, unsigned> kWrongLength{
    {kFile, Line::ofThisSource(), "BDA::BulkExecuterFavorite::execBulkBlock"},
    Refusal::wrongDataLength,
    "error : invalid length. ( Favorite ): Correct = [0x%02x], Data = [0x%02x]\n"};
constexpr Failure<int> kInvalidLo{{kFile, Line::ofThisSource(), kForBulkDump},
                                  Refusal::noSuchFavorites,
                                  "error : invalid lo address ! [ lo = %d ]\n"};
constexpr Failure<int, int, unsigned> kNotSet{
    {kFile, Line::ofThisSource(), kForBulkDump},
    Refusal::favoriteNotSet,
    "error : contWork->setContentFavoriteFlag() ! [ ContSrvResult = %d, contType = %d, contNum = 0x%x ]\n"};
constexpr Failure<int> kWrongLo{
    {kFile, Line::ofThisSource(), kForBulkReq}, Refusal::noSuchFavorites, "error : wrong lo address ! [ lo = %d ]\n"};
constexpr Failure<int, int, unsigned> kNotRead{
    {kFile, Line::ofThisSource(), kForBulkReq},
    Refusal::favoriteNotRead,
    "error : contWork->getContentInformation() ! [ ContSrvResult = %d, contType = %d, contNum = 0x%x ]\n"};

}  // namespace

BulkExecuterFavorite::BulkExecuterFavorite(std::vector<CMA::JobReceiver*>* jobReceivers, CMA::JobTools* jobTools,
                                           CMA::TemporaryCoreModel* temporaryModel, ExecuterSharedState* sharedState,
                                           std::uint32_t dataLength, ContSrv::Work* work, ContSrv::_ContType contType,
                                           std::uint32_t firstNumber, std::uint32_t endNumber)
    : BulkExecuter(jobReceivers, jobTools, temporaryModel, sharedState, dataLength),
      work_(work),
      contType_(contType),
      firstNumber_(firstNumber),
      endNumber_(endNumber) {}

BDAErr BulkExecuterFavorite::execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) {
  if (length != getDataLength()) {
    kWrongLength(getDataLength(), length);
    return BDA_ERR_DATA_LENGTH;
  }
  if (data == nullptr && length > 0) return BDA_ERR_DATA_LENGTH;
  if (isReceive > 1) return BDA_OK;
  if (work_ == nullptr) return BDA_ERR;
  return isReceive == 1 ? execBulkBlockForBulkDump(data, length) : execBulkBlockForBulkReq(data, length);
}

BDAErr BulkExecuterFavorite::execBulkBlockForBulkDump(const std::uint8_t* data, std::uint32_t length) {
  const std::uint32_t first = getAddress().getLo() + firstNumber_;
  if (first >= endNumber_) {
    kInvalidLo(getAddress().getLo());
    return BDA_ERR;
  }
  for (std::uint32_t i = 0; i < length; ++i) {
    const auto result = work_->setContentFavoriteFlag(contType_, first + i, data[i], i + 1 == length);
    if (result == ContSrv::ContRes_Success || result == ContSrv::ContRes_DoNothing) continue;
    kNotSet(int(result), int(contType_), first + i);
    return BDA_ERR | BDA_INFO_EDITOR;
  }
  return BDA_INFO_EDITOR;
}

BDAErr BulkExecuterFavorite::execBulkBlockForBulkReq(std::uint8_t* data, std::uint32_t length) {
  const std::uint32_t first = getAddress().getLo() + firstNumber_;
  if (first >= endNumber_) {
    kWrongLo(getAddress().getLo());
    return BDA_ERR;
  }
  for (std::uint32_t i = 0; i < length; ++i) {
    ContSrv::ContentInformation information;
    const auto result = work_->getContentInformation(contType_, first + i, information);
    if (result != ContSrv::ContRes_Success && result != ContSrv::ContRes_EmptyContent) {
      kNotRead(int(result), int(contType_), first + i);
      return BDA_ERR | BDA_INFO_EDITOR;
    }
    data[i] = information.favoriteFlag;
  }
  return BDA_INFO_EDITOR;
}

}  // namespace BDA
