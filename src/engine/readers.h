// Readers: what state a machine is in, for one tweak or into every control of a form.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/tweak.h"
#include "forms/form.h"
#include "foundation/session.h"

namespace korvex::engine {

// Whether the machine's Windows has the tweak; if not, Unavailable with the reason.
TweakState availability(const Tweak& tweak, foundation::Session& session);

// The state of the machine, the writer's inverse: On when the machine holds what a checked box
// would write. Reads only. Data and type are compared; a missing key is Off, and "delete" is
// satisfied by a missing value.
TweakState readState(const Tweak& tweak, foundation::Session& session);

// A text field's text: the value there, or defaultText.
std::string readText(const Tweak& tweak, foundation::Session& session);
// What it is on a machine as Windows leaves it: the row's default, or the word for no value.
std::string defaultText(const Tweak& tweak);

// readState for many rows: each key is opened once and stays open as long as the reader.
class StateReader {
 public:
  explicit StateReader(foundation::Session& session) : session_(session) {}
  ~StateReader();
  StateReader(const StateReader&) = delete;
  StateReader& operator=(const StateReader&) = delete;

  TweakState state(const Tweak& tweak);

 private:
  struct Opened {
    Root root;
    std::string_view path;  // of a row or a literal: both are there for good
    platform::Status status;
    platform::HKEY key;
  };
  const Opened& open(Root root, std::string_view path);
  TweakState stateOfRow(const Tweak& tweak);
  TweakState stateOfValue(const Tweak& tweak);

  foundation::Session& session_;
  std::vector<Opened> opened_;
};

// The reader of P_rwDefrag: either of its two entries will do.
TweakState p_DetermineDefrag(const Tweak& tweak, foundation::Session& session);

// The readers of the specials, each beside its writer.
TweakState p_DetermineNoAdminShares(const Tweak& tweak, foundation::Session& session);
TweakState p_DetermineNoLogOff(const Tweak& tweak, foundation::Session& session);
TweakState p_DetermineRestrictRegistry(const Tweak& tweak, foundation::Session& session);
TweakState p_DetermineNetworkDrive(const Tweak& tweak, foundation::Session& session);
TweakState p_DetermineNameSpace(const Tweak& tweak, foundation::Session& session);
TweakState p_DetermineControlPanel_Printers_History(const Tweak& tweak,
                                                    foundation::Session& session);
TweakState p_DetermineShellVerbs(const Tweak& tweak, foundation::Session& session);
TweakState p_DetermineInherentDLLs(const Tweak& tweak, foundation::Session& session);
TweakState p_DetermineBMP(const Tweak& tweak, foundation::Session& session);
TweakState p_DetermineIE5InterfaceProps(const Tweak& tweak, foundation::Session& session);
TweakState p_Arrows(const Tweak& tweak, foundation::Session& session);
TweakState p_DetermineUserPrefMask(const Tweak& tweak, foundation::Session& session);
// Any name of My Computer that tells who is logged on counts.
TweakState p_DetermineLogonCredentials(const Tweak& tweak, foundation::Session& session);
// Dr. Watson adds to its log file where nothing tells it not to.
TweakState p_DetermineDrWatsonAppendOverwrite(const Tweak& tweak, foundation::Session& session);

// The texts of the fields whose value is more than a text.
std::string p_DetermineServerMaxUsers(const Tweak& tweak, foundation::Session& session);
std::string p_DetermineBrowserElection(const Tweak& tweak, foundation::Session& session);

// Sets the control of every row of the form to the machine's state and stores the state values.
// Called with g_bNoRecord set. A row whose control the form does not have is left out. progress is
// called with the percentage done, where given. which, where given, chooses the rows.
void readIntoForm(forms::Form& form, foundation::Session& session,
                  const std::function<void(int)>& progress = {},
                  const std::function<bool(const Tweak&)>& which = {});

// frmOffice: a value that is not 0, of rows that Jet reads so; the function behind a code.
TweakState p_DetermineJetVals(const Tweak& tweak, foundation::Session& session);
TweakState p_DetermineAsstRemove(const Tweak& tweak, foundation::Session& session);
std::string p_DetermineAutoCalculate(const Tweak& tweak, foundation::Session& session);

}  // namespace korvex::engine
