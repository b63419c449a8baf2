// SPDX-License-Identifier: Apache-2.0
// A program that knows the installed headers and libraries alone: it makes the engine, asks it, and ends it.
#include <wx/init.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "orvcore/orvcore.h"
#include "tolbase/tolbase.h"
#include "tolcore/tolcore.h"
#include "tolimage/tolimage.h"

int main() {
    wxInitializer initializer;
    char folder[] = "/tmp/orvelle-consumer-XXXXXX";
    if (mkdtemp(folder) == nullptr) return 1;
    SetAppDocumentsPath(folder);
    OrvInterface engine(new OrvContext);
    const bool empty = !GetContext()->HasFile(Evidence);
    const std::size_t signatures = GetContext()->GetNumberOfElementsInQtDatabases();
    std::printf("%zu signatures, evidence slot %s\n", signatures, empty ? "empty" : "full");
    return empty && signatures > 1000 ? 0 : 1;
}
