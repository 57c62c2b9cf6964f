#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bda/Export.h"
#include "bda/platform/CMA/Job.h"
#include "bda/platform/CMA/ParameterModels.h"

namespace EvtSrv {
class EventPortManager;
}

// The editor's own: its models and jobs, the numbers by which it knows devices and banks, its screen.
namespace CMA {

// A scratch copy of every kind of model, filled by a bulk dump before it is stored, or loaded before it is dumped.
// Opaque to all but its editor.
class BDA_PLATFORM_API TemporaryCoreModel {
 public:
  virtual ~TemporaryCoreModel();
};

// The editor's models and the jobs on them. The editor implements and owns it. Unless a comment says otherwise an
// operation is called on the thread that handles bulk messages, and a null model means that the editor has none.
class BDA_PLATFORM_API JobTools {
 public:
  virtual ~JobTools();

  // The assistant creates one temporary model when it is constructed and destroys it at its end, both on the thread
  // that owns the assistant. Null: none can be had; nothing can be received into models then, and every operation that
  // takes the temporary model is handed null.
  virtual TemporaryCoreModel* createTemporaryModel() = 0;
  virtual void destroyTemporaryModel(TemporaryCoreModel* model) = 0;

  // Opening a model of the temporary model: it exists afterwards and is as new. The results are for the editor's
  // own use. `number` is a voice's number (a multi part, or 0), `normalVoice` false a drum voice; `state` is
  // StmcSrv::StateTyp_Void; the arpeggio's `ofVoice` is true for a single voice, `number` is 0 and `asNew` true.
  virtual bool initTemporaryVoiceModel(TemporaryCoreModel* model, std::uint16_t number, bool normalVoice) = 0;
  virtual bool initTemporaryMultiModel(TemporaryCoreModel* model, std::uint32_t state) = 0;
  virtual bool initTemporaryArpeggioModel(TemporaryCoreModel* model, bool ofVoice, std::uint16_t number,
                                          bool asNew) = 0;
  virtual bool initTemporaryMasterModel(TemporaryCoreModel* model) = 0;
  virtual bool initTemporaryRemoteModel(TemporaryCoreModel* model) = 0;

  // What is open in `model`; null while that kind is not open, or not under that number.
  virtual VoiceParameterModel* getTemporaryVoiceModel(TemporaryCoreModel* model, std::uint16_t number) = 0;
  virtual MultiParameterModel* getTemporaryMultiModel(TemporaryCoreModel* model) = 0;
  virtual ArpeggioParameterModel* getTemporaryArpeggioModel(TemporaryCoreModel* model) = 0;
  virtual MasterParameterModel* getTemporaryMasterModel(TemporaryCoreModel* model) = 0;
  virtual RemoteParameterModel* getTemporaryRemoteModel(TemporaryCoreModel* model) = 0;

  // The live models: the edit buffers. `number` is a multi part, or 0 for the voice that is edited alone.
  virtual VoiceParameterModel* getVoiceModel(std::uint16_t number) = 0;
  virtual MultiParameterModel* getMultiModel() = 0;
  virtual ArpeggioParameterModel* getArpeggioModel() = 0;
  virtual MasterParameterModel* getMasterModel() = 0;
  virtual RemoteParameterModel* getRemoteModel() = 0;
  // What is always live: the system settings, and what fits nowhere else.
  virtual SystemParameterModel* getSystemModel() = 0;
  virtual AdditionalParameterModel* getAdditionalModel() = 0;

  // Loads the content that a header 0E `mid` `lo` names into the temporary model, or stores the temporary model as the
  // content that a footer 0F `mid` `lo` names. A JOB::Result; anything but Result_Success is a failure.
  virtual unsigned long loadForReceivedSysExBulk(TemporaryCoreModel* model, std::uint8_t mid, std::uint8_t lo) = 0;
  virtual unsigned long storeForReceivedSysExBulk(TemporaryCoreModel* model, std::uint8_t mid, std::uint8_t lo) = 0;

  // Whether a dump or a request of that address may be handled now: Result_Success; Result_UnknownError to have a
  // dump ignored without a word (a request goes on); any other JOB::Result to have it refused. Asked once for every
  // message that is valid by itself and by the system's settings, before anything else of the editor is used for it, so
  // an editor may choose here which live models the message meets. Only what empty mixing voices need comes first: the
  // removal of one by its footer, and the look at the name of one that is requested. Where that settles the message
  // nothing is asked here.
  virtual unsigned long checkModeForReceivedSysExBulk(TemporaryCoreModel* model, unsigned char hi, unsigned char mid,
                                                      unsigned char lo) = 0;

  // The number under which ContSrv keeps voice `number` of bank code `bank` (0 to 15, see voiceBankSelTable). Any
  // pair has one; `number` may be the bank's count, which gives the end of its range.
  virtual std::uint32_t getVoiceContentNumber(std::uint8_t bank, std::uint8_t number) = 0;

  // Around every received block, also one that fails: what the models change must not be echoed as MIDI. Called in
  // pairs, never nested.
  virtual void suspendOutputMidi() = 0;
  virtual void resumeOutputMidi() = 0;

  // Name of waveform `number` (from 1) or arpeggio `number` (from 0), `bank` 1. A JOB::Result; `name` is set on
  // Result_Success only.
  virtual unsigned long getWaveformContentName(std::uint32_t number, std::uint8_t bank, std::string& name) = 0;
  virtual unsigned long getArpeggioContentName(std::uint32_t number, std::uint8_t bank, std::string& name) = 0;

  // The manager that this editor's store belongs to; may be null.
  virtual EvtSrv::EventPortManager* getEventPortManager() = 0;

  // Fills `bytes` with the screen's image, one byte 0-127 a pixel, 160 x 64, row by row. 0 on success; any
  // other value is a failure. An editor without a screen leaves `bytes` empty.
  virtual std::uint32_t getScreenImage(std::vector<std::uint8_t>& bytes);
};

}  // namespace CMA
