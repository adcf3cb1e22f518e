#pragma once

#include <memory>

#include "analysis/BlobConfig.h"
#include "analysis/BlobFeature.h"
#include "analysis/BlobRecord.h"
#include "foundation/CTivImage.h"
#include "foundation/CTivOperator.h"

class ImplBlob;

/// Finds the connected regions of an image, its blobs, and measures them.
///
/// By default the image is thresholded by Otsu's level, blobs are the eight-connected regions of the pixels from the
/// level on, and their Basic features are computed; 8-bit images are swept in strips side by side, as many as the
/// library has threads. GetConfig opens the rest. The object serves one caller at a time. Blobs are numbered from 0 in
/// an order that nothing may rely on before it sorts them.
class CTivBlob : public CTivOperator {
public:
    /// @param capacity blobs that there is room for at first
    /// @param growth step by which more room is made; 0: a full array ends the extraction, with the blobs found so far
    /// Without memory the failure is reported and every method answers as for an invalid object.
    CTivBlob(int capacity, int growth);
    ~CTivBlob() override;
    CTivBlob(CTivBlob&&) noexcept;  ///< leaves an invalid object behind
    CTivBlob& operator=(CTivBlob&&) noexcept;

    /// Limits of the bounding box, in pixels, both ends accepted. @return false, reported, for an invalid object
    bool SetMinWidth(int pixels);
    bool SetMaxWidth(int pixels);
    bool SetMinHeight(int pixels);
    bool SetMaxHeight(int pixels);
    /// Everything else that Execute follows. Null for an invalid object.
    BlobConfig* GetConfig();

    /// Extracts the blobs of the image's ROI; coordinates are the image's. What was read before is overwritten.
    /// @param image FormatUByte, UShort or Binary; with run lengths as BlobInput says
    /// @return false, reported, with no blobs left
    bool Execute(CTivImage& image);

    /// With continuous frames each Execute takes its image as the next rows of one tall image: blobs that reach its
    /// last row stay open and are not among the results before they end. Only Basic and Moment features are served, and
    /// the configuration must stay. Turning it on or off begins anew. @return false for an invalid object
    bool SetContinuous(bool continuous);

    /// @return accepted blobs; -1 for an invalid object
    int GetNumBlobs() const;

    // Readers report nothing. The index i counts in the present order, which a sort changes.
    int GetBlobWidth(int i) const;   ///< pixels; 0 outside 0 to GetNumBlobs() - 1, -1 for an invalid object
    int GetBlobHeight(int i) const;  ///< the same
    float GetCenterX(int i) const;   ///< centre of gravity; 0 outside, -1 for an invalid object
    float GetCenterY(int i) const;   ///< the same
    /// @param feature a BlobFeature @return its value; 0 outside and where its group was not computed, -1 for an
    /// invalid object
    float GetFeature(int feature, int i) const;

    /// Orders the blobs by a feature of a computed group; at equal values by the last pixel's y, then its x.
    /// @param operation a BlobSortOrder
    /// @return false, reported, with the order untouched: a number out of range, a group that was not computed
    bool SortByFeature(int feature, int operation);

    // All that is known of a blob, and what its runs were read from; valid until the next Execute.
    const BlobRecord* GetBlob(int i) const;        ///< null outside 0 to GetNumBlobs() - 1
    const CTivImage* GetThresholdedImage() const;  ///< null where not kept

private:
    std::unique_ptr<ImplBlob> impl_;
};
