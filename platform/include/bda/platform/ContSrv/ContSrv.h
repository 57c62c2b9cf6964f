#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bda/Export.h"

namespace EvtSrv {
class EventPortManager;
}

// The contents store: voices, multis, performances and their like, each a name and a file of bytes under a type and a
// number. The editor implements it; every operation runs on the thread that handles bulk messages, synchronously.
namespace ContSrv {

// Result of an operation. Which results count as good, the caller's contract says: most take ContRes_Success alone.
using _ContResult = std::int32_t;

inline constexpr _ContResult ContRes_Success = 0;        // it is done
inline constexpr _ContResult ContRes_DoNothing = 1;      // nothing was there to be done
inline constexpr _ContResult ContRes_EmptyContent = 2;   // the number is valid, no content is stored there
inline constexpr _ContResult ContRes_Failure = 3;        // failures are 3 and above
inline constexpr _ContResult ContRes_NoSuchContent = 4;  // no content can have that type and number
inline constexpr _ContResult ContRes_StoreError = 5;     // the store itself failed; nothing was changed

// Kind of a content.
using _ContType = std::uint32_t;

inline constexpr _ContType ContType_None = 0;     // no kind
inline constexpr _ContType ContType_Multi = 1;    // numbers 0 to 127
inline constexpr _ContType ContType_Voice = 4;    // numbers as CMA::JobTools::getVoiceContentNumber gives them
inline constexpr _ContType ContType_Single = 14;  // number 0 alone, without a name

// Stands for "all contents" where an operation takes a number.
inline constexpr unsigned long ContentNumber_All = 0xFFFFFFFF;

// A slot's favourite flag, kept as it came; 0 means no favourite.
using _ContFavoriteFlag = std::uint8_t;

// What a file is opened for.
enum _OpenMode : std::int32_t {
  OpenMode_Read = 0,   // to be read from its beginning
  OpenMode_Write = 1,  // to be written from its beginning
};

// What is known of a slot beside its content.
struct ContentInformation {
  _ContFavoriteFlag favoriteFlag = 0;  // 0: no favourite
};

// The bytes of an open data file. Owned by its DataFile.
class BDA_PLATFORM_API Data {
 public:
  virtual ~Data();

  // Writes behind what was written before. The number of bytes written, less than `size` on failure (never read as an
  // error code).
  virtual std::int64_t write(const std::uint8_t* bytes, std::int64_t size) = 0;
  // Reads on from where the last read ended. The number of bytes read, less than `size` at the end or on failure.
  virtual std::int64_t read(std::uint8_t* bytes, std::int64_t size) = 0;
  // The number of bytes that can be read; negative on failure.
  virtual std::int64_t getSize() = 0;
};

// One open content file. Owned by the Work that opened it, until closeDataFile.
class BDA_PLATFORM_API DataFile {
 public:
  virtual ~DataFile();

  // The file's bytes, the DataFile's. Null on failure; the file must still be closed.
  virtual Data* openData() = 0;
  // Ends what openData began; what was written is on disk when it returns ContRes_Success.
  virtual _ContResult closeData(Data* data) = 0;
  // As closeData, but what was written reaches the disk only with Work::sync.
  virtual _ContResult closeDataWithoutSync(Data* data) = 0;
};

// The store. It belongs to the editor and outlives everything that was constructed with it.
class BDA_PLATFORM_API Work {
 public:
  virtual ~Work();

  // 1 while the editor loads or saves a content file: dumps and requests are then refused, but for a footer that
  // empties a mixing voice and a request for an empty one. Any other value: free.
  virtual unsigned char getLoadSaveFlag() = 0;

  // Mixing voice `voice` of the content (`type`, `number`): removal, name, number. There are 0 to 15, and
  // ContentNumber_All for a removal; a name may be asked for up to 255, of voices that do not exist.
  // Removing what is not there is ContRes_DoNothing; the name of an empty voice is ContRes_EmptyContent.
  virtual _ContResult removeMixingVoice(_ContType type, unsigned long number, unsigned long voice) = 0;
  virtual _ContResult getMixingVoiceName(_ContType type, unsigned long number, unsigned long voice,
                                         std::string& name) = 0;
  virtual std::uint32_t getMixingVoiceNumber(_ContType type, unsigned long number, unsigned long voice) = 0;
  // How many mixing voices are stored and how many there may be.
  virtual _ContResult getMixingVoiceSumSync(std::int64_t& count, std::int64_t& maximum) = 0;

  // After a run of contents of that type was written in a pass, and before those of it that became empty are removed.
  // Type 0 stands for a pass without contents.
  virtual _ContResult requestOverWriteConfig(_ContType type) = 0;
  // Removing contents that are not there is ContRes_DoNothing. `sync` true: on disk when the call returns.
  virtual _ContResult removeContents(_ContType type, const std::vector<std::uint32_t>& numbers, bool sync) = 0;
  virtual _ContResult removeContent(_ContType type, std::uint32_t number) = 0;

  // A path is a name that openDataFile understands, nothing more.
  virtual _ContResult getDataFilePath(_ContType type, std::uint32_t number, std::string& path) = 0;
  // The name under which a content is listed; of a slot without content ContRes_EmptyContent. `name` starts empty.
  // A name belongs to the content, not to its file: it stays when the file is written, until another one is set or the
  // content is removed. A content for which none was set has the empty name, and answers it with ContRes_Success.
  virtual _ContResult getContentName(_ContType type, std::uint32_t number, std::string& name) = 0;
  // While a file of the content is open for writing the name is that of what is written, also where no content is
  // stored yet: it takes effect together with the bytes, or not at all. The bulk dump assistant sets it there, between
  // openData and write. A dump that carries no name sets none, nor does one whose name cannot be unpacked: the store
  // cannot tell the two apart, and the old name stays. That the former means the empty name only its message tells.
  // `sync` false: on disk with the next sync.
  virtual _ContResult setContentName(_ContType type, std::uint32_t number, const std::string& name, bool sync) = 0;
  // Null when the file cannot be opened; for reading also when no content is stored there. The Work owns the file.
  // For reading, null is always answered as an empty content: an editor whose store failed has to notice that itself.
  // To open for writing changes nothing: bytes and name stay until Data::write has succeeded.
  virtual DataFile* openDataFile(const std::string& path, _OpenMode mode) = 0;
  // `mode` is 0. The file is gone afterwards, whatever the result.
  virtual _ContResult closeDataFile(DataFile* file, int mode) = 0;
  // Everything written so far is on disk when this returns ContRes_Success. The bulk dump assistant ends each pass with
  // it and does not look at the result: an editor that does not keep a failure itself reports success falsely.
  virtual _ContResult sync() = 0;

  // `last` is true with the last flag of a run: the run may then be written at once. After a failure no further flag of
  // the run follows, hence no last one.
  virtual _ContResult setContentFavoriteFlag(_ContType type, std::uint32_t number, _ContFavoriteFlag flag,
                                             bool last) = 0;
  // A slot without content answers ContRes_EmptyContent and still fills in what is known of it.
  virtual _ContResult getContentInformation(_ContType type, std::uint32_t number, ContentInformation& information) = 0;
};

// Where the store of an editor is asked for.
class BDA_PLATFORM_API WorkManager {
 public:
  // The store that belongs to an event port manager; null for a null manager or one without store.
  static Work* getWork(EvtSrv::EventPortManager* manager);
};

}  // namespace ContSrv
