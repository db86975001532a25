#ifndef QRA_TESTS_UNIT_SCSA_PACKAGE_XML_H
#define QRA_TESTS_UNIT_SCSA_PACKAGE_XML_H

#include <string>

/// A metadata document with all that packages tell; `title` stands in all its titles.
inline std::string metadata_xml(const std::string& title) {
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<mddece:MetadataSet xmlns:mddece="urn:mddece" xmlns:md="urn:md">
  <mddece:ContentMetadata>
    <md:ContentID>urn:dece:cid:1</md:ContentID>
    <md:DECEMediaProfile>hd</md:DECEMediaProfile>
    <md:RunLength>PT1H30M</md:RunLength>
    <md:Publisher>Harbour &amp; Sons</md:Publisher>
    <md:TitleDisplay19>)" +
           title + R"( 19</md:TitleDisplay19>
    <md:TitleDisplay60>)" +
           title + R"( 60</md:TitleDisplay60>
    <md:TitleDisplayUnlimited>)" +
           title + R"( without end</md:TitleDisplayUnlimited>
    <md:TitleDisplaySort>)" +
           title + R"(, sorted</md:TitleDisplaySort>
    <md:Summary190>short</md:Summary190>
    <md:Summary400>longer</md:Summary400>
    <md:Summary4000>longest</md:Summary4000>
    <md:DescriptionLanguage>en-GB</md:DescriptionLanguage>
  </mddece:ContentMetadata>
  <mddece:RequiredImages>
    <Width>1920</Width><Height>1080</Height><Encoding>image/jpeg</Encoding>
    <TrackReference>2</TrackReference><Location>cover.jpg</Location>
  </mddece:RequiredImages>
  <mddece:Ratings>
    <Rating><country>GB</country><System>BBFC</System><Value>12A</Value>
      <Description>mild peril</Description><AdultContent>false</AdultContent></Rating>
    <Rating><country>DE</country><System>FSK</System><Value>6</Value></Rating>
  </mddece:Ratings>
  <mddece:Chapters>
    <Chapter><Width>320</Width><Height>180</Height><Encoding>image/png</Encoding>
      <TrackReference>3</TrackReference><Location>not read</Location></Chapter>
    <Chapter><TrackReference>4</TrackReference></Chapter>
  </mddece:Chapters>
</mddece:MetadataSet>
)";
}

#endif
