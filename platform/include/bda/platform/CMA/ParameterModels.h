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
  // How large it is, by the names of the getters.
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
  static constexpr std::size_t kElementCount = 8;  // elements of a normal voice
  static constexpr std::size_t kKeyCount = 73;     // keys of a drum voice

  // One of the up to eight elements of a normal voice.
  class BDA_PLATFORM_API ElementNode {
   public:
    // How large it is, by the names of the getters.
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
    virtual ParameterGroup* getParams() = 0;               // oscillator and filter
    virtual ParameterGroup* getWave() = 0;                 // parameter 0: the waveform
    virtual ExceptionalParam8* getExceptionalParam() = 0;  // without it no block of the element is converted
  };

  // One of the 73 keys of a drum voice.
  class BDA_PLATFORM_API KeyNode {
   public:
    // How large it is, by the names of the getters.
    static constexpr GroupSize kParamsSize{125};
    static constexpr GroupSize kWaveSize{1, 16};

    virtual ~KeyNode();
    virtual ParameterGroup* getParams() = 0;  // all but the waveform
    virtual ParameterGroup* getWave() = 0;    // parameter 0: the waveform
  };

  virtual ~VoiceParameterModel();

  virtual ModelSrv::ModelPart* getName() = 0;       // the voice's name
  virtual ParameterGroup* getType() = 0;            // parameter 0: 0 a normal voice, 1 a drum voice
  virtual ParameterGroup* getCommon() = 0;          // common settings and controllers
  virtual ParameterGroup* getCommonExtra() = 0;     // one more common setting
  virtual ParameterGroup* getArpeggioCommon() = 0;  // arpeggio settings; dumps carry parameter 6 alone
  virtual ParameterGroup* getArpeggioTempo() = 0;   // parameter 0: the arpeggio's tempo
  // Which arpeggio entry the arpeggio block of a bulk dump carries: the editor's own number, asked for with each.
  virtual std::uint32_t getArpeggioEntryIndex() = 0;
  // The entry of that number.
  virtual ParameterGroup* getArpeggioEntry(std::uint32_t entry) = 0;
  virtual ParameterGroup* getArpeggioSix() = 0;  // the six parameters of 16 bits of the arpeggio block
  virtual ParameterGroup* getInsertionA() = 0;   // insertion effect A
  virtual ParameterGroup* getInsertionB() = 0;   // insertion effect B
  virtual ParameterGroup* getInsertionL() = 0;   // insertion effect L: an effect and 16 parameters more
  // Element `element`, 0 to kElementCount - 1; null of a drum voice.
  virtual ElementNode* getElement(std::uint32_t element) = 0;
  // Key `key`, 0 to kKeyCount - 1; null of a normal voice.
  virtual KeyNode* getKey(std::uint32_t key) = 0;
};

// A multi or a performance: parts, effects, audio input.
class BDA_PLATFORM_API MultiParameterModel {
 public:
  // How large it is, by the names of the getters.
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
  static constexpr std::size_t kPartCount = 16;  // parts of a multi; a performance's dumps reach the first four

  // A part: a voice, and how it is played.
  class BDA_PLATFORM_API PartNode {
   public:
    // How large it is, by the names of the getters.
    static constexpr GroupSize kBankProgramSize{3};
    static constexpr GroupSize kMainSize{58};
    static constexpr GroupSize kExtraSize{7};

    virtual ~PartNode();

    // The voice that the part plays. Parameters 0, 1, 2: bank select MSB, bank select LSB, program number.
    virtual ParameterGroup* getBankProgram() = 0;
    // All that is in neither of the others. Parameter 54: whether the part goes through the insertion effects, 0 or 1.
    virtual ParameterGroup* getMain() = 0;
    // The seven parameters that a single voice keeps here, in part 0, as well.
    virtual ParameterGroup* getExtra() = 0;
    // Puts a voice selection right in place and returns true; false when part `part` cannot play it, and the values
    // are then worth nothing: the part keeps the voice that it has. `bulk` is true for a selection that came by bulk
    // dump.
    virtual bool correctBankSelAndProgramNum(std::uint32_t part, std::uint8_t& bankSelectMsb,
                                             std::uint8_t& bankSelectLsb, std::uint8_t& programNumber, bool bulk) = 0;
  };

  // An audio input part of a multi.
  class BDA_PLATFORM_API AdPartNode {
   public:
    // How large it is, by the names of the getters.
    static constexpr GroupSize kParamsSize{8};

    virtual ~AdPartNode();
    // Parameter 7: whether the part goes through the insertion effects, 0 or 1.
    virtual ParameterGroup* getParams() = 0;
  };

  virtual ~MultiParameterModel();

  virtual ModelSrv::ModelPart* getName() = 0;             // the name; of the dumps a performance's alone carry it
  virtual ParameterGroup* getCommon() = 0;                // common settings
  virtual ParameterGroup* getReverb() = 0;                // the reverb, also of a single voice
  virtual ParameterGroup* getReverbSettings() = 0;        // more parameters of it
  virtual ParameterGroup* getChorus() = 0;                // the chorus, also of a single voice
  virtual ParameterGroup* getChorusSettings() = 0;        // more parameters of it
  virtual ParameterGroup* getInsertionA() = 0;            // insertion effect A
  virtual ParameterGroup* getInsertionB() = 0;            // insertion effect B
  virtual ParameterGroup* getMasterEq() = 0;              // the master EQ; parameter 7 is not carried
  virtual ParameterGroup* getMasterEffect() = 0;          // the master effect
  virtual ParameterGroup* getMasterEffectSettings() = 0;  // one more parameter of it
  // Audio input part `part`, 0 to kAdPartCount - 1.
  virtual AdPartNode* getAdPart(std::uint32_t part) = 0;
  // Part `part`, 0 to kPartCount - 1. A single voice uses part 0.
  virtual PartNode* getPart(std::uint32_t part) = 0;

  // Switches the insertion effects of every part and audio input part off, before a common block says which are on.
  virtual void insertionSwitchAllOff() = 0;
};

// The arpeggios of a multi or a performance.
class BDA_PLATFORM_API ArpeggioParameterModel {
 public:
  // How large it is, by the names of the getters.
  static constexpr GroupSize kTempoSize{1, 16};
  static constexpr GroupSize kCommonSize{7};
  static constexpr std::size_t kPartCount = 16;

  // The arpeggio of a part.
  class BDA_PLATFORM_API PartNode {
   public:
    // How large it is, by the names of the getters.
    static constexpr GroupSize kParamsSize{39};
    static constexpr GroupSize kSixSize{6, 16};

    virtual ~PartNode();
    virtual ParameterGroup* getParams() = 0;  // the arpeggio of the part
    virtual ParameterGroup* getSix() = 0;     // six parameters of 16 bits more
  };

  virtual ~ArpeggioParameterModel();

  // Parameter 0: the tempo. No block carries it: to a multi edit buffer that is received that of the live one is
  // copied.
  virtual ParameterGroup* getTempo() = 0;
  // What all parts have in common.
  virtual ParameterGroup* getCommon() = 0;
  // The arpeggio of part `part`, 0 to kPartCount - 1.
  virtual PartNode* getPart(std::uint32_t part) = 0;
};

// A master: what the instrument starts with, and four zones of the keyboard.
class BDA_PLATFORM_API MasterParameterModel {
 public:
  // How large it is, by the names of the getters.
  static constexpr std::size_t kNameLength = 20;
  static constexpr GroupSize kCommonSize{8};
  static constexpr std::size_t kZoneCount = 4;

  // A zone of the keyboard.
  class BDA_PLATFORM_API ZoneNode {
   public:
    // How large it is, by the names of the getters.
    static constexpr GroupSize kParamsSize{33};

    virtual ~ZoneNode();
    virtual ParameterGroup* getParams() = 0;  // all of the zone
  };

  virtual ~MasterParameterModel();

  virtual ModelSrv::ModelPart* getName() = 0;  // the master's name
  virtual ParameterGroup* getCommon() = 0;     // common settings
  // Zone `zone`, 0 to kZoneCount - 1.
  virtual ZoneNode* getZone(std::uint32_t zone) = 0;
};

// A remote setting: what the panel's controllers send to a computer.
class BDA_PLATFORM_API RemoteParameterModel {
 public:
  // How large it is, by the names of the getters.
  static constexpr std::size_t kName1Length = 13;
  static constexpr std::size_t kName2Length = 12;
  static constexpr GroupSize kCommonSize{2};
  static constexpr std::size_t kControllerCount = 12;

  // A controller of the panel.
  class BDA_PLATFORM_API ControllerNode {
   public:
    // How large it is, by the names of the getters.
    static constexpr std::size_t kName1Length = 9;
    static constexpr std::size_t kName2Length = 15;
    static constexpr GroupSize kParamsSize{2};

    virtual ~ControllerNode();
    virtual ModelSrv::ModelPart* getName1() = 0;  // its first name
    virtual ModelSrv::ModelPart* getName2() = 0;  // its second name
    virtual ParameterGroup* getParams() = 0;      // all else
  };

  virtual ~RemoteParameterModel();

  virtual ModelSrv::ModelPart* getName1() = 0;  // the setting's first name
  virtual ModelSrv::ModelPart* getName2() = 0;  // the setting's second name
  virtual ParameterGroup* getCommon() = 0;      // common settings
  // Controller `controller`, 0 to kControllerCount - 1.
  virtual ControllerNode* getController(std::uint32_t controller) = 0;
};

// The system settings of the instrument; always live.
class BDA_PLATFORM_API SystemParameterModel {
 public:
  // How large it is, by the names of the getters.
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

  // An audio input part with effects of its own.
  class BDA_PLATFORM_API AdPartNode {
   public:
    // How large it is, by the names of the getters.
    static constexpr GroupSize kParamsSize{6};
    static constexpr GroupSize kInsertionASize = kEffectSize;
    static constexpr GroupSize kInsertionBSize = kEffectSize;

    virtual ~AdPartNode();
    virtual ParameterGroup* getParams() = 0;      // all but its effects
    virtual ParameterGroup* getInsertionA() = 0;  // insertion effect A
    virtual ParameterGroup* getInsertionB() = 0;  // insertion effect B
  };

  // A quick setup of the sequencer.
  class BDA_PLATFORM_API QuickSetupNode {
   public:
    // How large it is, by the names of the getters.
    static constexpr std::size_t kNameLength = 8;
    static constexpr GroupSize kParamsSize{2};

    virtual ~QuickSetupNode();
    virtual ModelSrv::ModelPart* getName() = 0;  // the quick setup's name
    virtual ParameterGroup* getParams() = 0;     // all else
  };

  virtual ~SystemParameterModel();

  virtual ParameterGroup* getCommon() = 0;  // common settings
  virtual ParameterGroup* getTune() = 0;    // parameter 0: the master tune
  // Audio input part `part`, 0 to kAdPartCount - 1.
  virtual AdPartNode* getAdPart(std::uint32_t part) = 0;
  virtual ParameterGroup* getMasterEq() = 0;              // the master EQ; parameter 7 is not carried
  virtual ParameterGroup* getMasterEffect() = 0;          // the master effect
  virtual ParameterGroup* getMasterEffectSettings() = 0;  // one more parameter of it
  // Quick setup `quickSetup`, 0 to kQuickSetupCount - 1.
  virtual QuickSetupNode* getQuickSetup(std::uint32_t quickSetup) = 0;
  virtual ParameterGroup* getSequencer() = 0;  // the sequencer
  virtual ParameterGroup* getRemote() = 0;     // remote control
  // Parameter 50: the receive-bulk switch, 0 off; parameter 51: the device number (see DeviceNumber). Read with
  // every message; no block carries this group.
  virtual ParameterGroup* getUtility() = 0;
};

// What does not fit elsewhere.
class BDA_PLATFORM_API AdditionalParameterModel {
 public:
  // How large it is, by the names of the getters.
  static constexpr GroupSize kParamsSize{1};

  virtual ~AdditionalParameterModel();

  // Parameter 0 is cleared before the screen shows that something is being stored.
  virtual ParameterGroup* getParams() = 0;
  // Flushed after that. Null when nobody listens.
  virtual EvtSrv::EventPort* getEventPort() = 0;
};

}  // namespace CMA
