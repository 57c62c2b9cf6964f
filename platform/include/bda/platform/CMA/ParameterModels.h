#pragma once

#include <cstddef>
#include <cstdint>

#include "bda/Export.h"
#include "bda/platform/CMA/ParameterGroup.h"
#include "bda/platform/ModelSrv/ModelPart.h"

namespace EvtSrv {
class EventPort;
}

// The parameter models of the instrument. An editor implements them; they belong to it, or to the temporary model they
// were opened in. Every getter gives null when the model has no such group, name or node: callers then treat the whole
// model as missing. All of it runs on the thread that handles bulk messages.
//
// How large the models are stands with them, under the names of the getters: k...Size is what a group holds, k...Length
// the characters of a name, k...Count the nodes, which are numbered from 0. It is what the module uses, over all kinds
// of contents: who keeps as much can take every dump and answer every request.
namespace CMA {

// An effect: its type and its parameters.
inline constexpr GroupSize kEffectSize{21, 16};

// A voice and what belongs to it alone. A normal voice has elements and no keys, a drum voice keys and no elements.
class BDA_PLATFORM_API VoiceParameterModel {
 public:
  static constexpr std::size_t kNameLength = 20;
  static constexpr GroupSize kTypeSize{1};
  static constexpr GroupSize kCommonSize{93};
  static constexpr GroupSize kCommonExtraSize{1};
  static constexpr GroupSize kArpeggioCommonSize{7};
  static constexpr GroupSize kArpeggioTempoSize{1, 16};
  static constexpr GroupSize kArpeggioEntrySize{38};
  static constexpr GroupSize kArpeggioSixSize{6, 16};
  static constexpr GroupSize kInsertionASize = kEffectSize;
  static constexpr GroupSize kInsertionBSize = kEffectSize;
  static constexpr GroupSize kInsertionLSize{37, 16};
  static constexpr std::size_t kElementCount = 8;  // of a normal voice
  static constexpr std::size_t kKeyCount = 73;     // of a drum voice

  // One of the up to eight elements of a normal voice.
  class BDA_PLATFORM_API ElementNode {
   public:
    static constexpr GroupSize kParamsSize{137};
    static constexpr GroupSize kWaveSize{1, 16};

    // The parameters whose meaning depends on the kind of wave.
    class BDA_PLATFORM_API ExceptionalParam8 {
     public:
      virtual ~ExceptionalParam8();
      // False suspends the correction of dependent values while a block is converted, true resumes it.
      virtual void changeCorrectType(bool correct) = 0;
    };

    virtual ~ElementNode();
    virtual ParameterGroup* getParams() = 0;
    virtual ParameterGroup* getWave() = 0;
    virtual ExceptionalParam8* getExceptionalParam() = 0;
  };

  // One of the 73 keys of a drum voice.
  class BDA_PLATFORM_API KeyNode {
   public:
    static constexpr GroupSize kParamsSize{125};
    static constexpr GroupSize kWaveSize{1, 16};

    virtual ~KeyNode();
    virtual ParameterGroup* getParams() = 0;
    virtual ParameterGroup* getWave() = 0;
  };

  virtual ~VoiceParameterModel();

  virtual ModelSrv::ModelPart* getName() = 0;
  // Parameter 0: 0 a normal voice, 1 a drum voice.
  virtual ParameterGroup* getType() = 0;
  virtual ParameterGroup* getCommon() = 0;
  virtual ParameterGroup* getCommonExtra() = 0;
  virtual ParameterGroup* getArpeggioCommon() = 0;
  virtual ParameterGroup* getArpeggioTempo() = 0;
  // Which arpeggio entry the arpeggio block of a bulk dump carries.
  virtual std::uint32_t getArpeggioEntryIndex() = 0;
  virtual ParameterGroup* getArpeggioEntry(std::uint32_t entry) = 0;
  virtual ParameterGroup* getArpeggioSix() = 0;
  virtual ParameterGroup* getInsertionA() = 0;
  virtual ParameterGroup* getInsertionB() = 0;
  virtual ParameterGroup* getInsertionL() = 0;
  virtual ElementNode* getElement(std::uint32_t element) = 0;
  virtual KeyNode* getKey(std::uint32_t key) = 0;
};

// A multi or a performance: parts, effects, audio input.
class BDA_PLATFORM_API MultiParameterModel {
 public:
  static constexpr std::size_t kNameLength = 20;
  static constexpr GroupSize kCommonSize{41};
  static constexpr GroupSize kReverbSize = kEffectSize;
  static constexpr GroupSize kReverbSettingsSize{2};
  static constexpr GroupSize kChorusSize = kEffectSize;
  static constexpr GroupSize kChorusSettingsSize{3};
  static constexpr GroupSize kInsertionASize = kEffectSize;
  static constexpr GroupSize kInsertionBSize = kEffectSize;
  static constexpr GroupSize kMasterEqSize{18};
  static constexpr GroupSize kMasterEffectSize = kEffectSize;
  static constexpr GroupSize kMasterEffectSettingsSize{1};
  static constexpr std::size_t kAdPartCount = 1;
  static constexpr std::size_t kPartCount = 16;  // of a multi; the dumps of a performance reach the first four

  class BDA_PLATFORM_API PartNode {
   public:
    static constexpr GroupSize kBankProgramSize{3};
    static constexpr GroupSize kMainSize{58};
    static constexpr GroupSize kExtraSize{7};

    virtual ~PartNode();

    // Parameters 0, 1, 2: bank select MSB, bank select LSB, program number.
    virtual ParameterGroup* getBankProgram() = 0;
    virtual ParameterGroup* getMain() = 0;
    // The seven parameters that a single voice keeps here, in part 0, as well.
    virtual ParameterGroup* getExtra() = 0;
    // Puts a voice selection right in place and returns true; false when part `part` cannot play it, and the values
    // are then worth nothing. `bulk` is true for a selection that came by bulk dump.
    virtual bool correctBankSelAndProgramNum(std::uint32_t part, std::uint8_t& bankSelectMsb,
                                             std::uint8_t& bankSelectLsb, std::uint8_t& programNumber, bool bulk) = 0;
  };

  // An audio input part.
  class BDA_PLATFORM_API AdPartNode {
   public:
    static constexpr GroupSize kParamsSize{8};

    virtual ~AdPartNode();
    virtual ParameterGroup* getParams() = 0;
  };

  virtual ~MultiParameterModel();

  virtual ModelSrv::ModelPart* getName() = 0;
  virtual ParameterGroup* getCommon() = 0;
  virtual ParameterGroup* getReverb() = 0;
  virtual ParameterGroup* getReverbSettings() = 0;
  virtual ParameterGroup* getChorus() = 0;
  virtual ParameterGroup* getChorusSettings() = 0;
  virtual ParameterGroup* getInsertionA() = 0;
  virtual ParameterGroup* getInsertionB() = 0;
  virtual ParameterGroup* getMasterEq() = 0;
  virtual ParameterGroup* getMasterEffect() = 0;
  virtual ParameterGroup* getMasterEffectSettings() = 0;
  virtual AdPartNode* getAdPart(std::uint32_t part) = 0;
  virtual PartNode* getPart(std::uint32_t part) = 0;

  // Switches the insertion effects of every part and audio input part off, before a common block says which are on.
  virtual void insertionSwitchAllOff() = 0;
};

class BDA_PLATFORM_API ArpeggioParameterModel {
 public:
  static constexpr GroupSize kTempoSize{1, 16};
  static constexpr GroupSize kCommonSize{7};
  static constexpr std::size_t kPartCount = 16;

  class BDA_PLATFORM_API PartNode {
   public:
    static constexpr GroupSize kParamsSize{39};
    static constexpr GroupSize kSixSize{6, 16};

    virtual ~PartNode();
    virtual ParameterGroup* getParams() = 0;
    virtual ParameterGroup* getSix() = 0;
  };

  virtual ~ArpeggioParameterModel();

  // Parameter 0: the tempo, 16 bits.
  virtual ParameterGroup* getTempo() = 0;
  virtual ParameterGroup* getCommon() = 0;
  virtual PartNode* getPart(std::uint32_t part) = 0;
};

// A master: what the instrument starts with, and four zones of the keyboard.
class BDA_PLATFORM_API MasterParameterModel {
 public:
  static constexpr std::size_t kNameLength = 20;
  static constexpr GroupSize kCommonSize{8};
  static constexpr std::size_t kZoneCount = 4;

  class BDA_PLATFORM_API ZoneNode {
   public:
    static constexpr GroupSize kParamsSize{33};

    virtual ~ZoneNode();
    virtual ParameterGroup* getParams() = 0;
  };

  virtual ~MasterParameterModel();

  virtual ModelSrv::ModelPart* getName() = 0;
  virtual ParameterGroup* getCommon() = 0;
  virtual ZoneNode* getZone(std::uint32_t zone) = 0;
};

// A remote setting: what the panel's controllers send to a computer.
class BDA_PLATFORM_API RemoteParameterModel {
 public:
  static constexpr std::size_t kName1Length = 13;
  static constexpr std::size_t kName2Length = 12;
  static constexpr GroupSize kCommonSize{2};
  static constexpr std::size_t kControllerCount = 12;

  class BDA_PLATFORM_API ControllerNode {
   public:
    static constexpr std::size_t kName1Length = 9;
    static constexpr std::size_t kName2Length = 15;
    static constexpr GroupSize kParamsSize{2};

    virtual ~ControllerNode();
    virtual ModelSrv::ModelPart* getName1() = 0;
    virtual ModelSrv::ModelPart* getName2() = 0;
    virtual ParameterGroup* getParams() = 0;
  };

  virtual ~RemoteParameterModel();

  virtual ModelSrv::ModelPart* getName1() = 0;
  virtual ModelSrv::ModelPart* getName2() = 0;
  virtual ParameterGroup* getCommon() = 0;
  virtual ControllerNode* getController(std::uint32_t controller) = 0;
};

// The system settings of the instrument; always live.
class BDA_PLATFORM_API SystemParameterModel {
 public:
  static constexpr GroupSize kCommonSize{50};
  static constexpr GroupSize kTuneSize{1, 16};
  static constexpr std::size_t kAdPartCount = 1;
  static constexpr GroupSize kMasterEqSize{18};
  static constexpr GroupSize kMasterEffectSize = kEffectSize;
  static constexpr GroupSize kMasterEffectSettingsSize{1};
  static constexpr std::size_t kQuickSetupCount = 6;
  static constexpr GroupSize kSequencerSize{7};
  static constexpr GroupSize kRemoteSize{2};
  static constexpr GroupSize kUtilitySize{52};

  class BDA_PLATFORM_API AdPartNode {
   public:
    static constexpr GroupSize kParamsSize{6};
    static constexpr GroupSize kInsertionASize = kEffectSize;
    static constexpr GroupSize kInsertionBSize = kEffectSize;

    virtual ~AdPartNode();
    virtual ParameterGroup* getParams() = 0;
    virtual ParameterGroup* getInsertionA() = 0;
    virtual ParameterGroup* getInsertionB() = 0;
  };

  class BDA_PLATFORM_API QuickSetupNode {
   public:
    static constexpr std::size_t kNameLength = 8;
    static constexpr GroupSize kParamsSize{2};

    virtual ~QuickSetupNode();
    virtual ModelSrv::ModelPart* getName() = 0;
    virtual ParameterGroup* getParams() = 0;
  };

  virtual ~SystemParameterModel();

  virtual ParameterGroup* getCommon() = 0;
  // Parameter 0: the master tune, 16 bits.
  virtual ParameterGroup* getTune() = 0;
  virtual AdPartNode* getAdPart(std::uint32_t part) = 0;
  virtual ParameterGroup* getMasterEq() = 0;
  virtual ParameterGroup* getMasterEffect() = 0;
  virtual ParameterGroup* getMasterEffectSettings() = 0;
  virtual QuickSetupNode* getQuickSetup(std::uint32_t quickSetup) = 0;
  virtual ParameterGroup* getSequencer() = 0;
  virtual ParameterGroup* getRemote() = 0;
  // Parameter 50: the receive-bulk switch, 0 off; parameter 51: the device number (see DeviceNumber).
  virtual ParameterGroup* getUtility() = 0;
};

// What does not fit elsewhere. Parameter 0 is cleared before the editor shows that it is storing.
class BDA_PLATFORM_API AdditionalParameterModel {
 public:
  static constexpr GroupSize kParamsSize{1};

  virtual ~AdditionalParameterModel();

  virtual ParameterGroup* getParams() = 0;
  // Null when nobody listens.
  virtual EvtSrv::EventPort* getEventPort() = 0;
};

}  // namespace CMA
