#include "tav/tav_pars.h"

namespace tav {

TAV_Pars::TAV_Pars()
    : mapTypes(DEF_T_MAPTYPES.begin(), DEF_T_MAPTYPES.end()), qThresholds(DEF_QS.begin(), DEF_QS.end()) {}

}  // namespace tav
