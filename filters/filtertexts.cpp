// SPDX-License-Identifier: Apache-2.0
#include "filters/filtertexts.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr OrvFilterExplanation kExplanations[] = {
    {"Original",
     "Shows the picture as its file holds it: not turned by its orientation tag, not scaled, its pixels unchanged. "
     "Nothing is calculated.",
     "None is needed: nothing is calculated.",
     "What is shown has 8 bits a channel and no transparency. Files with more are reduced to that, and CMYK is turned "
     "into colours without its profile."},

    {"File Format",
     "Lists what is known of the file: names, sizes, format, digests, metadata counts, camera, dates, compression, "
     "thumbnail and preview. Each row may bear the warnings of the rules of the option group \"File Format\"; the "
     "status is a warning where a hard finding stands.\n\n"
     "With a reference file the two are set side by side, and rows that differ are marked.",
     "H. Farid, \"Digital image ballistics from JPEG quantization\", Technical Report TR2006-583, Dartmouth College, "
     "2006\nE. Kee, M. K. Johnson, H. Farid, \"Digital image authentication from JPEG headers\", IEEE Transactions on "
     "Information Forensics and Security 6 (2011)",
     "A finding is a reason to look, no proof: cameras break rules, and honest programs leave traces of editing. No "
     "finding proves nothing either: all of these facts can be forged, and the tables of cameras and programs behind "
     "some rules are incomplete."},

    {"EXIF",
     "Lists all metadata of the file by group and tag, as ExifTool reads them. A tag that occurs twice is listed "
     "twice. With a reference file the two are set side by side, and rows that differ are marked.",
     "CIPA DC-008 / JEITA CP-3451, \"Exchangeable image file format for digital still cameras: Exif\"\nP. Harvey, "
     "ExifTool, https://exiftool.org",
     "Metadata are easily removed, copied and forged. That they agree with each other proves nothing; that they "
     "contradict each other is worth an explanation. Values of makers' own tags rest on what ExifTool knows of them."},

    {"JPEG Structure",
     "Lists how the JPEG is built: coding process, size, sampling, quality, the quantisation tables in the picture's "
     "own order, the Huffman tables by their counts of codes, and the markers of the main picture with offset and "
     "length.",
     "ITU-T T.81 | ISO/IEC 10918-1, \"Digital compression and coding of continuous-tone still images\"\nT. Gloe, "
     "\"Forensic analysis of ordered data structures on the example of JPEG files\", IEEE Workshop on Information "
     "Forensics and Security 2012",
     "Tables and the order of markers tell of the program or device that wrote the file last, and many share them. "
     "The quality is an estimate on the scale of the IJG wherever the tables are not exactly those of that scale."},

    {"Hex Viewer",
     "Shows bytes of the file in hexadecimal, 16 a line behind their offset, and beside them those that are printable "
     "characters.\n\n"
     "\"Offset\" is the first byte that is shown, \"Length\" how many there are.",
     "None is needed: these are the bytes.", "Only the part of the file is shown that the parameters ask for."},

    {"Error Level Analysis",
     "Saves the picture as JPEG once more and shows, pixel by pixel and channel by channel, how much it changes by "
     "that. Each saving takes the same blocks of 8 by 8 pixels nearer to where they no longer change. So a part that "
     "was saved fewer times, or otherwise, than the rest can show another level: look for a part that is darker or "
     "brighter than other parts with as much texture, and whose border follows an object.\n\n"
     "\"Quality\" is that of the new saving. A high one (90, 95) shows the finest differences; try several, above all "
     "some near the quality of the file itself, which \"JPEG Structure\" tells. The new saving keeps all of the "
     "chroma (4:4:4), so that sampling adds nothing of its own. \"Scale\" multiplies the differences for the eye; 0 "
     "finds a scale by their mean.",
     "N. Krawetz, \"A picture's worth... Digital image analysis and forensics\", Black Hat Briefings USA 2007",
     "Edges, fine texture and saturated colours always change more than flat parts, whoever made the picture: only "
     "parts of like content can be compared. Once the whole picture has been saved again at a low quality, or scaled, "
     "nothing stands out any more; a picture that was never a JPEG shows its texture alone. Text and drawings that a "
     "program put in show brightly, which is no forgery as such. The scale that \"Scale\" 0 finds is each picture's "
     "own: to compare two pictures by brightness, set the same scale for both."},

    {"Noise Map",
     "Shows the noise level of each block of the picture's brightness: the standard deviation, in grey levels, that "
     "white noise would need to leave such a residual. A part that comes from another camera or another exposure, or "
     "that was smoothed, scaled or strongly compressed, can have more or less noise than its surroundings. In colour "
     "green stands for little noise and red for much.\n\n"
     "\"Method\" chooses the residual: \"Wavelet\" takes the diagonal details of a Haar transform, \"Median\" what a "
     "median filter of 3 by 3 pixels takes away. In both the level is the median of the residual's magnitudes in the "
     "block, which edges hardly move. \"Block Size\" trades detail (small) against certainty (large). \"Strength\" is "
     "how many grey levels of the map stand for one level of noise, the same for every picture.",
     "B. Mahdian, S. Saic, \"Using noise inconsistencies for blind image forensics\", Image and Vision Computing 27 "
     "(2009)\nD. L. Donoho, I. M. Johnstone, \"Ideal spatial adaptation by wavelet shrinkage\", Biometrika 81 (1994)",
     "Fine texture (grass, fabric, gravel) counts as noise. Every camera's noise depends on brightness and vanishes "
     "where a picture is saturated; blurred backgrounds keep their noise, noise reduction takes it from flat parts "
     "first. JPEG takes noise away, from smooth parts above all, so that a strongly compressed picture shows zero "
     "over wide parts. Compare parts of like brightness and content. The filter sets no warning: no level by itself "
     "tells of tampering."},

    {"Channels",
     "Shows one component of the picture alone, in the chosen colour space. Pasted parts, repaired spots and the grid "
     "of blocks that compression leaves often show in one component, the chroma ones above all, and are hidden in the "
     "whole.\n\n"
     "\"Color Space\" is that of red, green and blue, of luma and colour differences (YCbCr, as in a JPEG), of hue, "
     "saturation and value (HSV), or CIE 1976 L*a*b* (Lab); \"Component\" is one of its three. Chroma lies close to "
     "128 in most photographs and looks plain grey: \"Highlights\", \"Midtones\" and \"Shadows\" spread its tones, "
     "with ends at 150 and 110, say.",
     "Recommendation ITU-R BT.601 (luma and colour differences)\nCIE 15, \"Colorimetry\" (L*a*b*)\nA. R. Smith, "
     "\"Color gamut transform pairs\", SIGGRAPH 1978 (hue, saturation and value)",
     "It measures nothing: what is seen is the examiner's judgement. The chroma of a JPEG with subsampling is coarser "
     "than its luma by nature, and hue is of no meaning where a pixel is nearly grey."},

    {"Histogram Equalisation",
     "Spreads the brightness over the whole scale, so that small differences in shadows and highlights become "
     "visible: painted or cloned parts that are flatter than their surroundings, borders of pasted parts.\n\n"
     "\"Method\" equalises the luma over the whole picture, each colour channel by itself, or the luma tile by tile "
     "with a limited slope. \"Highlights\", \"Midtones\" and \"Shadows\" set the tones of the result.",
     "R. C. Gonzalez, R. E. Woods, \"Digital Image Processing\", 3rd edition, 2008, section 3.3\nK. Zuiderveld, "
     "\"Contrast limited adaptive histogram equalization\", Graphics Gems IV (1994)",
     "It measures nothing, and it makes noise and compression blocks visible as well, which every photograph has."},

    {"Histogram",
     "Counts how many pixels have each of the 256 levels of brightness, or of one colour. A photograph straight from "
     "a camera has a smooth outline. Tones that were stretched afterwards leave levels without pixels at regular "
     "distances; tones that were compressed leave peaks. An end of the scale that holds more than 1 % of the pixels "
     "is marked by a line: there the picture is clipped.\n\n"
     "\"Channel\" chooses what is counted; luminance is that of ITU-R BT.601. The results tell the share of the "
     "pixels at both ends and the number of empty levels in between.",
     "M. C. Stamm, K. J. R. Liu, \"Forensic detection of image manipulation using statistical intrinsic "
     "fingerprints\", IEEE Transactions on Information Forensics and Security 5 (2010)",
     "A later saving as JPEG, scaling or added noise fills the gaps. Small, flat and drawn pictures have empty levels "
     "by nature. Cameras clip by themselves and process tones, too. The whole picture is counted: a changed part of "
     "it moves the outline hardly at all."},

    {"JPEG Ghost Plot",
     "Saves the brightness of the picture as JPEG at each quality of a range and plots the mean squared difference "
     "over the quality. A picture that was saved at a quality before hardly changes when it is saved at that quality "
     "again: the curve has a dip there. The deepest dip is marked by a line of its own, further dips by lines of "
     "another colour. The dip of a JPEG's own last quality is to be expected. A further dip at a lower quality tells "
     "that the picture was saved at that one earlier; a dip of a picture that is no JPEG tells that it was one. Small "
     "dips at qualities above the deepest one are mostly its echoes, where the steps are a half or a third as "
     "large.\n\n"
     "\"Minimum Quality\" and \"Maximum Quality\" bound the range, on the scale of the IJG. The whole picture is "
     "measured, without its chroma.",
     "H. Farid, \"Exposing digital forgeries from JPEG ghosts\", IEEE Transactions on Information Forensics and "
     "Security 4 (2009)",
     "A picture that was cropped off the grid of 8 by 8 pixels, scaled or turned since its last saving has no dip. "
     "Cameras and programs with tables of their own give a shallow one near the quality that fits best, or none. At "
     "the highest qualities the steps are so small that dips can't be told. The curve is of the whole picture, so a "
     "small pasted part leaves no dip."},

    {"DCT Histogram",
     "Counts the values that one DCT coefficient has in all blocks of the file, as they are stored, in quantisation "
     "steps. A picture that was compressed once gives a smooth hill. One that was decoded and compressed again with "
     "another step, on the same grid of blocks, gives gaps (where the first step was the larger) or peaks (where it "
     "was the smaller) that repeat: then the picture was opened and saved again by something.\n\n"
     "\"Component\" is the luma or one of the two chromas, \"Coefficient\" the place in zigzag order (0 is the mean "
     "of a block, 1 and 2 the coarsest waves across and down), \"Range\" how far to either side of 0 values are "
     "counted. \"Zeros\" leaves out the bar of 0 of all coefficients but the mean, as it would dwarf the others. The "
     "results tell how strongly the counts repeat (1 is a comb of single peaks) and with what period; from 0.2 on the "
     "status is a warning.",
     "J. Lukas, J. Fridrich, \"Estimation of primary quantization matrix in double compressed JPEG images\", Digital "
     "Forensic Research Workshop 2003\nA. C. Popescu, H. Farid, \"Statistical tools for digital forensics\", 6th "
     "International Workshop on Information Hiding 2004",
     "Nothing repeats if both steps were equal or the last was a multiple of the first, or if the picture was cropped "
     "off the grid, scaled or turned in between. Small and flat pictures have too few values, as have high "
     "frequencies. A camera that processes a picture in two steps can leave such traces itself; chroma that is "
     "subsampled differently both times does not repeat. The whole picture is counted."},

    {"JPEG Tables",
     "Compares the quantisation tables of the picture, its thumbnail and its preview with the tables that are known "
     "of cameras and programs, in the compiled database and in the user's own, and lists those that write the same.",
     "H. Farid, \"Digital image ballistics from JPEG quantization\", Technical Report TR2006-583, Dartmouth College, "
     "2006\nE. Kee, M. K. Johnson, H. Farid, \"Digital image authentication from JPEG headers\", IEEE Transactions on "
     "Information Forensics and Security 6 (2011)",
     "The tables are those of the last program that encoded the picture. Many cameras and programs share tables, and "
     "the standard tables of the IJG are everyone's. A camera that is not listed may just not be in the database."},

    {"JPEG Huffman Tables",
     "Lists the Huffman tables of the picture, its thumbnail and its preview by their counts of codes, and tells "
     "whether they are the standard ones.",
     "ITU-T T.81 | ISO/IEC 10918-1, Annex K\nE. Kee, M. K. Johnson, H. Farid, \"Digital image authentication from "
     "JPEG headers\", IEEE Transactions on Information Forensics and Security 6 (2011)",
     "Tables that were made for the one picture (\"optimised\") tell that an encoder does so, no more; many cameras "
     "and most programs write the standard ones."},

    {"JPEG Dimples",
     "Looks for dimples: a single darker or brighter pixel at the first place of each block of 8 by 8, which encoders "
     "leave that round coefficients down or up. Told are their strength and the place of the grid that they lie on. A "
     "strength of 13 and above counts as present.",
     "S. Agarwal, H. Farid, \"Photo forensics from JPEG dimples\", IEEE Workshop on Information Forensics and "
     "Security 2017",
     "Many encoders round to the nearest value and leave none. Later strong compression, scaling and turning take "
     "dimples away. The picture is measured as a whole."},

    {"Social Media Identification",
     "Compares how the JPEG is encoded (sizes, counts of markers and fields, sampling, quantisation steps) with "
     "samples of files from social platforms, and names the platforms that the three most similar ones come from.",
     "O. Giudice, A. Paratore, M. Moltisanti, S. Battiato, \"A classification engine for image ballistics of social "
     "data\", International Conference on Image Analysis and Processing 2017",
     "Similar encoding is no upload: a web site's software or a converter can encode just so. Platforms change their "
     "encoders, share them, and some hand files out unchanged. How often the verdict is right was measured; read the "
     "figures in the manual's page on social media before you rest anything on it."},
};

}  // namespace

OrvFilterExplanation const* OrvExplainFilter(wxString const& name) {
    auto const* const found = std::find_if(
        std::begin(kExplanations), std::end(kExplanations),
        [&name](OrvFilterExplanation const& each) { return name.IsSameAs(wxString::FromUTF8(each.name), false); });
    return found == std::end(kExplanations) ? nullptr : found;
}
