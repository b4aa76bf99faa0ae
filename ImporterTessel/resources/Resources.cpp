/// The resources that every importer has in its file.
#include <ImporterTessel/entry/Identity.h>
#include <kestrel/importabi/Resources.h>

KS_IMPORTER_RESOURCES(TESSEL_NAME_KEY, TESSEL_MATCH_NAME);
