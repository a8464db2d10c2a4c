#pragma once

#include <vector>

#include "host/AxDicomImage.h"
#include "wrappers/Event.h"
#include "wrappers/HostString.h"
#include "wrappers/ImageDirRec.h"
#include "wrappers/LuminaError.h"
#include "wrappers/SaveAsEventArgs.h"
#include "wrappers/SaveAsInfo.h"
#include "wrappers/SaveInfo.h"
#include "wrappers/SeriesDirRec.h"

namespace VantorWrappers {

// True when carets at the end of a patient's name are left out of copies: the user's registry has an integer
// above 0 as "RemoveTrailingCaretsFromPatientName" in "Software\Norvik\Lumina\Deidentify". Looked up once in
// the life of the process.
bool TrimTrailingCarets();

// Writes a series that the host shows back to disk, image by image, each by its image control; the records go
// along.
//
// Each operation runs to its end on the caller's thread. It raises eSaveAsStatus once with Starting, with
// Running for each image and then every quarter of a second while the control writes it, and once with
// Stopping. A failure writes one line to the trace (the save area or the save-as one); the other images are
// still saved, and the last failure is the one that is returned. Only what controls, handlers of the event
// and the host's hooks throw is thrown.
//
// Controls are not owned. Their list goes with the list of images; one that is missing there, or null, is a
// failure of that image.
//
// What is passed, the saver itself, and each control in the list have to be there until the operation has
// come back, also when a control or a subscriber thinks it is done. Either may dispose of directories, and
// clear the lists: the images that are not saved by then are left out.
//
// Nothing is written but below the folder of the directory, whatever its records say: a control whose path is
// elsewhere, or leads there by a link, is a failure of its image.
class SeriesSaver {
  public:
    using ImageControls = std::vector<VantorHost::AxDicomImage*>;

    // How far the saving is: see SaveAsEventArgs.
    Event<SaveAsEventArgs> eSaveAsStatus;

    // Raises eSaveAsStatus.
    void SendSaveAsStatus(const SaveAsEventArgs& status) const { eSaveAsStatus.Raise(status); }

    // Saves images in place, in the directory of their series, numbered from 1 in the order of the list; with
    // new instance UIDs if the info says so, which the records then have as well.
    //     (InternalError, SaveGeneralFailure)      a parameter or a control is missing
    //     (Fatal, SaveOpenForUpdateFailure)        the DICOMDIR cannot be opened; nothing is saved
    //     (Fatal, SaveGeneralFailure)              an image is not in the directory, its file is elsewhere,
    //     or
    //                                              its control failed
    //     (Fatal, DirectoryWriteError)             the images are saved, the DICOMDIR could not be written
    // The record of an image that could not be saved stays as it was, also when its control throws, and the
    // control is told its old UID and number again. A failure of an earlier call stays the result until
    // SaveAsSeries starts anew: hosts rely on it.
    LuminaError SaveSeries(const SaveInfo* saveInfo, std::vector<ImageDirRec>* images,
                           const ImageControls* controls, const SeriesDirRec* series);

    // Saves copies of images as a new series with new UIDs in the directory that the info names, below the
    // patient that it names. `series` is the one that the images are of; without one the copy has the
    // modality "SC" and a study of its own. `newSeriesUID` is empty until the series is made. Texts that are
    // those of the source's records keep their bytes and character set in the new ones; see RecordTexts. The
    // file of an image that could not be entered, also because a subscriber has thrown, is removed again.
    //     (InternalError, SaveGeneralFailure)      a parameter, the directory or a control is missing
    //     (Fatal, SaveOpenForUpdateFailure)        the DICOMDIR cannot be opened; nothing is saved
    //     (Fatal, SaveGeneralFailure)              a record cannot be made, or an image's control failed
    //     (Fatal, FileNamesAllUsed)                there is no name for a new file
    //     (Fatal, DirectoryWriteError)             the files are written, the DICOMDIR could not be
    LuminaError SaveAsSeries(const SaveAsInfo* saveAsInfo, std::vector<ImageDirRec>* images,
                             const ImageControls* controls, const SeriesDirRec* series,
                             HostString& newSeriesUID);

  private:
    LuminaError fError;
};

}  // namespace VantorWrappers
