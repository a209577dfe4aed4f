// The numbers of the engine's errors, as CDaoErrorInfo::m_lErrorCode shows them, for those above that tell them apart,
// and the way of the system's own faults to them.
#pragma once

#include "afx/dao_error.h"
#include "jet/base/error.h"
#include "jet/pages/file_errors.h"
#include "os/file.h"

namespace afx {

namespace errors = jet::errors;

// Runs `work`, in which a fault of the system comes out as CDaoException*.
template <class Work>
decltype(auto) with_dao_errors(Work&& work) {
    try {
        return work();
    } catch (const os::FileError& error) {
        throw_dao(jet::engine_number(error.fault()), error.what());
    }
}

}  // namespace afx
