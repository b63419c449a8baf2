// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/command.h"

namespace cli {

std::vector<CommandEntry> const& AllCommands() {
    static const std::vector<CommandEntry> entries = {
        {"info", "Tell what is known of images, and warn of what is odd", MakeInfoCommand},
        {"exif", "List all metadata of images", MakeExifCommand},
        {"jpeg", "Show the compression tables of JPEGs, and who writes such", MakeJpegCommand},
        {"dimples", "Look for JPEG dimples", MakeDimplesCommand},
        {"social", "Tell whether JPEGs look as if they came from a social platform", MakeSocialCommand},
        {"compare", "Put what is known of two images side by side", MakeCompareCommand},
        {"match", "Find the files that are compressed as one is", MakeMatchCommand},
        {"filters", "List the analysis filters, or explain one", MakeFiltersCommand},
        {"filter", "Run an analysis filter on an image", MakeFilterCommand},
        {"cache", "Show or remove the stored results of an image", MakeCacheCommand},
        {"batch", "Run filters over many files, with a report", MakeBatchCommand},
        {"table", "Put what is known of many files side by side, and sort them", MakeTableCommand},
        {"multi", "Compare many files with one", MakeMultiCommand},
        {"carve", "Take out the pictures inside a file", MakeCarveCommand},
        {"coordinates", "Tell where a photograph was taken", MakeCoordinatesCommand},
        {"search", "Ask web services for photographs and sightings", MakeSearchCommand},
        {"download", "Fetch the photographs that a search found", MakeDownloadCommand},
        {"verify", "Check a bundle of results against its manifest", MakeVerifyCommand},
        {"project", "Start, check and report a project", MakeProjectCommand},
        {"bookmark", "Keep the findings of a project", MakeBookmarkCommand},
        {"plugin", "Answer the Griffeye platform", MakePluginCommand},
        {"options", "Show and change the settings", MakeOptionsCommand},
        {"qt", "Look at and edit the signatures of quantisation tables", MakeQtCommand},
        {"sms", "Look at and edit the signatures of social platforms", MakeSmsCommand},
    };
    return entries;
}

}  // namespace cli
