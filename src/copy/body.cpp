// Copying whole bodies.
#include "checks/checks.hpp"
#include "copy/records.hpp"
#include "sdpline/sdpline.h"

using namespace sdpline;

SDPResult SdpLibCloneSdp(const SdpLine *pstSdpLine, SdpLine **ppstClone) {
    if (pstSdpLine == nullptr || ppstClone == nullptr) {
        return fail(Check::CloneBodyArgument);
    }
    *ppstClone = nullptr;
    SdpLine *line = nullptr;
    if (const SDPResult result = SdpLibCreateSdp(&line)) {
        return result;
    }
    SDPMemCp *const control = line->pstMemCp;
    RecordCopier<CopyMemory> copier{CopyMemory(*control)};
    copier.copy(*pstSdpLine, *line);
    line->pstMemCp = control;
    if (copier.failed()) {
        SdpLibReleaseSdp(&line);
        return fail(copier.tooManyPayLoads() ? Check::CloneBodyPayLoads : Check::CloneBodyAlloc);
    }
    *ppstClone = line;
    return 0;
}
