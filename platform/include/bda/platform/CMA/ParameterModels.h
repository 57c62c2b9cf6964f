#pragma once

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
namespace CMA {

// A voice and what belongs to it alone. A normal voice has elements and no keys, a drum voice keys and no elements.
class BDA_PLATFORM_API VoiceParameterModel {
 public:
  // One of the up to eight elements of a normal voice.
  class BDA_PLATFORM_API ElementNode {
   public:
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
  class BDA_PLATFORM_API PartNode {
   public:
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
  class BDA_PLATFORM_API PartNode {
   public:
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
  class BDA_PLATFORM_API ZoneNode {
   public:
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
  class BDA_PLATFORM_API ControllerNode {
   public:
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
  class BDA_PLATFORM_API AdPartNode {
   public:
    virtual ~AdPartNode();
    virtual ParameterGroup* getParams() = 0;
    virtual ParameterGroup* getInsertionA() = 0;
    virtual ParameterGroup* getInsertionB() = 0;
  };

  class BDA_PLATFORM_API QuickSetupNode {
   public:
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
  virtual ~AdditionalParameterModel();

  virtual ParameterGroup* getParams() = 0;
  // Null when nobody listens.
  virtual EvtSrv::EventPort* getEventPort() = 0;
};

}  // namespace CMA
