// Copying whole bodies.
#include "checks/checks.hpp"
#include "copy/records.hpp"
#include "sdpline/sdpline.h"

using namespace sdpline;

SDPResult SdpLibCloneSdp(const SdpLine *body, SdpLine **clone) {
    if (body == nullptr || clone == nullptr) {
        return fail(Check::CloneBodyArgument);
    }
    *clone = nullptr;
    SdpLine *line = nullptr;
    if (const SDPResult result = SdpLibCreateSdp(&line)) {
        return result;
    }
    SDPMemCp *const control = line->pstMemCp;
    RecordCopier<CopyMemory> copier{CopyMemory(*control)};
    copier.copy(*body, *line);
    line->pstMemCp = control;
    if (copier.failed()) {
        SdpLibReleaseSdp(&line);
        return fail(copier.tooManyPayLoads() ? Check::CloneBodyPayLoads : Check::CloneBodyAlloc);
    }
    *clone = line;
    return 0;
}
