#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "acquisition/zvn/ZvnBackend.h"

// What cameras send, by the Pixel Format Naming Convention (PFNC), and the buffers that become of it. 8 bits are the
// highest ones of a sample, rounded; 10 bits are its ten highest; colors come from a Bayer pattern after Malvar, He and
// Cutler (primitives/demosaic.h).

/// A row of the table of formats; how its samples lie is the table's own.
struct ZvnCameraFormat;

/// @param code PFNC's, as cameras give it @return null for a format that is not in the table
const ZvnCameraFormat* FindZvnCameraFormat(std::uint32_t code);
/// @param name PFNC's, such as "BayerRG12p"
const ZvnCameraFormat* FindZvnCameraFormat(const std::string& name);

const char* GetZvnFormatName(const ZvnCameraFormat& format);
std::uint32_t GetZvnFormatCode(const ZvnCameraFormat& format);
int GetZvnSampleBits(const ZvnCameraFormat& format);  ///< of one sample, 8 to 16

/// The format of the buffer that frames are delivered in.
/// @param deliveredBits 8; or 10, which gives formats of 10 bits and more as RGB with 10 bits a channel or as words
/// with
///        the samples as they come
std::uint32_t GetZvnBufferFormat(const ZvnCameraFormat& format, int deliveredBits);

/// @return whether the camera's bytes, rows without padding, are the buffer's as they stand
bool IsZvnFrameCopied(const ZvnCameraFormat& format, int deliveredBits);

/// Makes a buffer's pixels of a frame.
/// @param frame width, height and the format that GetZvnBufferFormat gives
/// @param sent the camera's bytes; rows begin with whole bytes where there are enough for that, else, as some cameras
///        send odd widths, the packed samples run on
/// @param padding bytes behind each row
/// @return false, and the destination untouched, where either span is too short
bool UnpackZvnFrame(const ZvnCameraFormat& format, int deliveredBits, const ZvnFrameFormat& frame,
                    std::span<const std::byte> sent, int padding, std::span<std::byte> destination);
