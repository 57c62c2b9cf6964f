#pragma once

// What the file dump executer reports: of packed bytes (Codec) and addresses (Naming), while it receives and holds
// dumps (Set), writes them (Write) and reads contents for an answer (Read). Their lines are those of this file.

#include "Failure.h"

namespace BDA::FileDumpFailures {

inline constexpr const char* kFile = "..\\..\\bda\\BulkExecuterFileDump.cpp";

namespace Codec {
inline constexpr const char* kDecode = "BDA::BulkExecuterFileDump::decode";
inline constexpr Failure<> kEncodeError{
    {kFile, Line::ofThisSource(), "BDA::BulkExecuterFileDump::encode"}, Refusal::notPacked, "Encode Error !!!\n"};
// What was being unpacked, and is refused for it, says whoever asked for it.
inline constexpr Failure<> kLengthError{{kFile, Line::ofThisSource(), kDecode}, Refusal::none, "Length Error !!!\n"};
inline constexpr Failure<> kDecodeError{{kFile, Line::ofThisSource(), kDecode}, Refusal::none, "Decode Error !!!\n"};
}  // namespace Codec

namespace Naming {
inline constexpr Failure<> kTypeError{{kFile, Line::ofThisSource(), "BDA::BulkExecuterFileDump::getContentsType"},
                                      Refusal::noContentType,
                                      "Get Contents Type Error !!!\n"};
inline constexpr Failure<> kNumberError{{kFile, Line::ofThisSource(), "BDA::BulkExecuterFileDump::getContentsNumber"},
                                        Refusal::noContentNumber,
                                        "Get Contents Number Error !!!\n"};
}  // namespace Naming

namespace Set {
inline constexpr Failure<> kBufferOverflow{{kFile, Line::ofThisSource(), "BDA::FileDumpBuffer::initData"},
                                           Refusal::outOfMemory,
                                           "File Dump Buufer's data is over flow !!!\n"};
inline constexpr const char* kFunction = "BDA::BulkExecuterFileDump::setBulkDumpMessage";
inline constexpr Failure<> kTooLong{
    {kFile, Line::ofThisSource(), kFunction}, Refusal::fileDumpTooLong, "File Dump over length !!!!\n"};
inline constexpr Failure<int> kNotRemoved{{kFile, Line::ofThisSource(), kFunction},
                                          Refusal::mixingVoiceNotRemoved,
                                          "error: failed to remove mixing voices ! [ ContSrvResult = %d ]\n"};
inline constexpr Failure<> kNoType{
    {kFile, Line::ofThisSource(), kFunction}, Refusal::noContentType, "error : content type error ! \n"};
inline constexpr Failure<int> kNoNumber{{kFile, Line::ofThisSource(), kFunction},
                                        Refusal::noContentNumber,
                                        "error : wrong content number ! [ res = %d ] \n"};
inline constexpr Failure<> kNoMemory{
    {kFile, Line::ofThisSource(), kFunction}, Refusal::outOfMemory, "error: memory over flow ! \n"};
}  // namespace Set

namespace Write {
inline constexpr const char* kAll = "BDA::BulkExecuterFileDump::writeFileDumps";
inline constexpr Failure<int> kNoSum{{kFile, Line::ofThisSource(), kAll},
                                     Refusal::mixingVoicesNotCounted,
                                     "error : contentsWork->getMixingVoiceSumSync() ! [ ContSrvResult = %d ]\n"};
inline constexpr Failure<int> kNoOverWrite{{kFile, Line::ofThisSource(), kAll},
                                           Refusal::overwriteRefused,
                                           "error : contentsWork->requestOverWriteConfig() ! [ ContSrvResult = %d ]\n"};
inline constexpr Failure<int, int> kNotRemoved{
    {kFile, Line::ofThisSource(), kAll},
    Refusal::contentNotRemoved,
    "error : contentsWork->removeContents() ! [ ContType = %d, ContSrvResult = %d ]\n"};

inline constexpr const char* kOne = "BDA::BulkExecuterFileDump::writeFileDump";
inline constexpr Failure<> kEmpty{
    {kFile, Line::ofThisSource(), kOne}, Refusal::emptyFileDump, "error : file dump is empty !\n"};
inline constexpr Failure<> kLength{
    {kFile, Line::ofThisSource(), kOne}, Refusal::fileDumpNameCutShort, "error : file dump length error !\n"};
inline constexpr Failure<> kData{
    {kFile, Line::ofThisSource(), kOne}, Refusal::fileDumpDataCutShort, "error : file dump data error !\n"};
inline constexpr Failure<int> kContentNotRemoved{{kFile, Line::ofThisSource(), kOne},
                                                 Refusal::contentNotRemoved,
                                                 "error : contentsWork->removeContent() ! [ ContSrvResult = %d ]\n"};
inline constexpr Failure<int> kNoPath{{kFile, Line::ofThisSource(), kOne},
                                      Refusal::noFilePath,
                                      "error : contentsWork->getDataFilePath() ! [ ContSrvResult = %d ]\n"};
inline constexpr Failure<int> kTooManyMixingVoices{{kFile, Line::ofThisSource(), kOne},
                                                   Refusal::mixingVoicesFull,
                                                   "error: over num of mixing voices [ num of mixvoice = %d ] !\n"};
inline constexpr Failure<> kNoFile{
    {kFile, Line::ofThisSource(), kOne}, Refusal::fileNotOpened, "error : contentsWork->openDataFile() !\n"};
inline constexpr Failure<> kNoData{
    {kFile, Line::ofThisSource(), kOne}, Refusal::dataNotOpened, "error : contentsDataFile->openData() !\n"};
inline constexpr Failure<> kUnopenedNotClosed{
    {kFile, Line::ofThisSource(), kOne}, Refusal::fileNotClosed, "error : contentsWork->closeDataFile() !\n"};
inline constexpr Failure<int> kNoName{
    {kFile, Line::ofThisSource(), kOne}, Refusal::nameNotSet, "error : contentsWork->setContentName() ! ret = [%d]\n"};
inline constexpr Failure<> kNameUndecoded{
    {kFile, Line::ofThisSource(), kOne}, Refusal::nameNotUnpacked, "Decode Error !!!\n"};
inline constexpr Failure<int> kNotWritten{{kFile, Line::ofThisSource(), kOne},
                                          Refusal::dataNotWritten,
                                          "error : contentsData->write() ! [ res size = %d ] \n"};
inline constexpr Failure<> kDataUndecoded{
    {kFile, Line::ofThisSource(), kOne}, Refusal::notUnpacked, "error : decode error !\n"};
inline constexpr Failure<int> kDataNotClosed{
    {kFile, Line::ofThisSource(), kOne},
    Refusal::dataNotClosed,
    "error : contentsDataFile->closeDataWithoutSync() ! [ ContSrvResult = %d ]\n"};
inline constexpr Failure<int> kFileNotClosed{{kFile, Line::ofThisSource(), kOne},
                                             Refusal::fileNotClosed,
                                             "error : contentsWork->closeDataFile() ! [ ContSrvResult = %d ]\n"};
}  // namespace Write

namespace Read {
inline constexpr const char* kFunction = "BDA::BulkExecuterFileDump::readFileDump";
inline constexpr Failure<int> kNoType{{kFile, Line::ofThisSource(), kFunction},
                                      Refusal::noContentType,
                                      "error : wrong content type ! [ ContType = %d ] \n"};
inline constexpr Failure<int> kNoNumber{{kFile, Line::ofThisSource(), kFunction},
                                        Refusal::noContentNumber,
                                        "error : wrong content number ! [ res = %d ] \n"};
inline constexpr Failure<int> kNoPath{{kFile, Line::ofThisSource(), kFunction},
                                      Refusal::noFilePath,
                                      "error : contentsWork->getDataFilePath() ! [ ContSrvResult = %d ]\n"};
inline constexpr Failure<int> kNoName{{kFile, Line::ofThisSource(), kFunction},
                                      Refusal::nameNotRead,
                                      "error : contentsWork->getContentName() ! [ ContSrvResult = %d ]\n"};
inline constexpr Failure<> kNoData{{kFile, Line::ofThisSource(), kFunction},
                                   Refusal::dataNotOpened,
                                   "error : contentsDataFile->openData(). data is null !\n"};
inline constexpr Failure<> kNameUnencoded{
    {kFile, Line::ofThisSource(), kFunction}, Refusal::notPacked, "error : name encode error ! \n"};
inline constexpr Failure<> kNotRead{
    {kFile, Line::ofThisSource(), kFunction}, Refusal::dataNotRead, "error : content data read error ! \n"};
inline constexpr Failure<unsigned> kTooLong{{kFile, Line::ofThisSource(), kFunction},
                                            Refusal::fileDumpTooLong,
                                            "error: file dump data is over flow ! [ size = 0x%02x, max = 0x3FFF ]\n"};
inline constexpr Failure<int> kDataNotClosed{{kFile, Line::ofThisSource(), kFunction},
                                             Refusal::dataNotClosed,
                                             "error : contentsDataFile->closeData() ! [ ContSrvResult = %d ]\n"};
inline constexpr Failure<int> kFileNotClosed{{kFile, Line::ofThisSource(), kFunction},
                                             Refusal::fileNotClosed,
                                             "error : contentsWork->closeDataFile() ! [ ContSrvResult = %d ]\n"};
inline constexpr Failure<> kCannotRead{
    {kFile, Line::ofThisSource(), "BDA::BulkExecuterFileDump::getBulkDumpMessageImplement"},
    Refusal::dumpNotCreated,
    "Read File Dump Error !!!\n"};
}  // namespace Read

}  // namespace BDA::FileDumpFailures
