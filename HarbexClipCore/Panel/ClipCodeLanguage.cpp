#include "HarbexClipCore/Panel/ClipCodeLanguage.hpp"

#include <algorithm>
#include <array>

namespace harbex {

namespace {

// Where a mark counts: anywhere in the text, or only at the start of a line (after indentation).
enum class Place { anywhere, lineStart, textStart };

struct Mark {
    std::string_view text;
    int weight;
    Place place = Place::anywhere;
};

struct Language {
    std::string_view name;
    std::span<const Mark> marks;
};

// Each mark counts once however often it occurs, so a long copy does not win on length. Weights:
// 5 and more for a mark no other language has, 3 for a strong hint, 1 or 2 for a common one.
constexpr Mark kSwift[] = {
    {"import SwiftUI", 6},
    {"import Foundation", 5},
    {"import UIKit", 6},
    {"guard let ", 4},
    {"if let ", 2},
    {"func ", 2, Place::lineStart},
    {"@State ", 4},
    {"@objc", 5},
    {"let ", 1, Place::lineStart},
    {"var ", 1, Place::lineStart},
    {"-> ", 1},
    {"print(\"\\(", 5},
};
constexpr Mark kPython[] = {
    {"def ", 3, Place::lineStart},
    {"elif ", 5, Place::lineStart},
    {"import ", 1, Place::lineStart},
    {"from ", 1, Place::lineStart},
    {" import ", 2},
    {"self.", 2},
    {"__init__", 5},
    {"__name__", 5},
    {"print(", 1},
    {"None", 1},
    {"True", 1},
    {"False", 1},
    {"):\n", 2},
    {"#!/usr/bin/env python", 8},
};
constexpr Mark kJavaScript[] = {
    {"console.log(", 5},
    {"function ", 2},
    {"=> ", 2},
    {"const ", 1, Place::lineStart},
    {"let ", 1, Place::lineStart},
    {"===", 3},
    {"!==", 3},
    {"document.", 3},
    {"require(", 3},
    {"module.exports", 5},
    {"export default ", 3},
    {"undefined", 2},
};
constexpr Mark kTypeScript[] = {
    {": string", 4},
    {": number", 4},
    {": boolean", 4},
    {"interface ", 2, Place::lineStart},
    {"export interface ", 4},
    {" as const", 4},
    {"type ", 1, Place::lineStart},
    {"readonly ", 2},
    {"console.log(", 2},
    {"=> ", 1},
    {"const ", 1, Place::lineStart},
};
constexpr Mark kRust[] = {
    {"fn ", 3, Place::lineStart},
    {"pub fn ", 5},
    {"let mut ", 5},
    {"println!(", 6},
    {"use std::", 6},
    {"impl ", 3, Place::lineStart},
    {"&str", 4},
    {"Vec<", 2},
    {"match ", 1},
    {"Some(", 2},
    {"Ok(", 1},
    {"#[derive(", 6},
    {"&mut ", 3},
};
constexpr Mark kGo[] = {
    {"package ", 4, Place::lineStart},
    {"func ", 2, Place::lineStart},
    {":= ", 3},
    {"fmt.", 5},
    {"err != nil", 6},
    {"go func", 5},
    {"import (", 4},
    {"chan ", 2},
};
constexpr Mark kC[] = {
    {"#include <stdio.h>", 6},
    {"#include <stdlib.h>", 6},
    {"#include ", 2, Place::lineStart},
    {"printf(", 3},
    {"malloc(", 4},
    {"int main(", 2},
    {"NULL", 2},
    {"->", 1},
    {"sizeof(", 2},
};
constexpr Mark kCpp[] = {
    {"std::", 5},
    {"#include <iostream>", 6},
    {"#include ", 2, Place::lineStart},
    {"template <", 4},
    {"template<", 4},
    {"nullptr", 4},
    {"#pragma once", 4},
    {"cout <<", 4},
    {"namespace ", 2},
    {"auto ", 1},
    {"const&", 2},
    {"::", 1},
};
constexpr Mark kJava[] = {
    {"public class ", 4},
    {"public static void main", 6},
    {"System.out.print", 6},
    {"import java.", 6},
    {"@Override", 5},
    {"private final ", 3},
    {"new ", 1},
    {"String[] ", 3},
};
constexpr Mark kKotlin[] = {
    {"fun ", 4, Place::lineStart},
    {"val ", 2, Place::lineStart},
    {"data class ", 6},
    {"println(", 1},
    {"import kotlin", 6},
    {"?.let", 5},
};
constexpr Mark kCSharp[] = {
    {"using System", 6}, {"Console.Write", 6}, {"{ get; set; }", 6},
    {"namespace ", 1},   {"public void ", 1},  {"var ", 1, Place::lineStart},
};
constexpr Mark kRuby[] = {
    {"def ", 2, Place::lineStart}, {"end\n", 2}, {"puts ", 4}, {"require '", 3}, {".each do", 5},
    {"attr_accessor", 6},          {"do |", 5},  {"nil", 1},
};
constexpr Mark kPHP[] = {
    {"<?php", 10}, {"$this->", 5}, {"echo ", 2}, {"function ", 1}, {"=> $", 3},
};
constexpr Mark kShell[] = {
    {"#!/bin/", 8},
    {"sudo ", 4, Place::lineStart},
    {"apt ", 3, Place::lineStart},
    {"export ", 2, Place::lineStart},
    {"fi\n", 3},
    {"then\n", 2},
    {"| grep ", 4},
    {"$(", 2},
    {"echo ", 2, Place::lineStart},
    {"cd ", 2, Place::lineStart},
    {"git ", 3, Place::lineStart},
    {" && ", 1},
};
constexpr Mark kSQL[] = {
    {"SELECT ", 3},       {"select ", 2, Place::lineStart},
    {" FROM ", 2},        {" from ", 1},
    {"WHERE ", 2},        {"INSERT INTO ", 5},
    {"CREATE TABLE ", 6}, {"UPDATE ", 2, Place::lineStart},
    {" JOIN ", 2},        {"GROUP BY ", 3},
    {"ORDER BY ", 3},
};
constexpr Mark kHTML[] = {
    {"<!DOCTYPE", 8}, {"<html", 6},    {"<div", 4}, {"</div>", 2}, {"<span", 3},
    {"<a href=", 4},  {"class=\"", 2}, {"<p>", 2},  {"<body", 4},
};
constexpr Mark kCSS[] = {
    {"px;", 3},       {"color: ", 2}, {"margin: ", 2},    {"padding: ", 2},
    {"display: ", 3}, {"@media ", 5}, {"font-size: ", 3}, {"}\n", 1},
};
constexpr Mark kJSON[] = {
    {"{\n", 1, Place::textStart},
    {"{\"", 2, Place::textStart},
    {"[\n", 1, Place::textStart},
    {"[{", 2, Place::textStart},
    {"\": ", 2},
    {"\":", 1},
};

constexpr std::array kLanguages{
    Language{"Swift", kSwift},
    Language{"Python", kPython},
    Language{"JavaScript", kJavaScript},
    Language{"TypeScript", kTypeScript},
    Language{"Rust", kRust},
    Language{"Go", kGo},
    Language{"C", kC},
    Language{"C++", kCpp},
    Language{"Java", kJava},
    Language{"Kotlin", kKotlin},
    Language{"C#", kCSharp},
    Language{"Ruby", kRuby},
    Language{"PHP", kPHP},
    Language{"Shell", kShell},
    Language{"SQL", kSQL},
    Language{"HTML", kHTML},
    Language{"CSS", kCSS},
    Language{"JSON", kJSON},
};

bool atLineStart(std::string_view text, std::size_t at) {
    while (at > 0 && (text[at - 1] == ' ' || text[at - 1] == '\t')) --at;
    return at == 0 || text[at - 1] == '\n';
}

bool occurs(std::string_view text, const Mark& mark) {
    if (mark.place == Place::textStart) {
        const std::size_t start = text.find_first_not_of(" \t\r\n");
        return start != std::string_view::npos && text.substr(start).starts_with(mark.text);
    }
    for (std::size_t at = text.find(mark.text); at != std::string_view::npos;
         at = text.find(mark.text, at + 1)) {
        if (mark.place == Place::anywhere || atLineStart(text, at)) return true;
    }
    return false;
}

int score(std::string_view text, const Language& language) {
    int total = 0;
    for (const Mark& mark : language.marks) {
        if (occurs(text, mark)) total += mark.weight;
    }
    return total;
}

}  // namespace

std::vector<std::string> ClipCodeLanguage::knownNames() {
    std::vector<std::string> names;
    for (const Language& language : kLanguages) names.emplace_back(language.name);
    return names;
}

std::optional<std::string> ClipCodeLanguage::guess(std::string_view text,
                                                   std::span<const std::string> languages) {
    if (languages.empty()) return std::nullopt;
    text = text.substr(0, kReadCharacters);
    int best = 0;
    int second = 0;
    const Language* winner = nullptr;
    for (const Language& language : kLanguages) {
        if (std::ranges::find(languages, language.name) == languages.end()) continue;
        const int points = score(text, language);
        if (points > best) {
            second = best;
            best = points;
            winner = &language;
        } else if (points > second) {
            second = points;
        }
    }
    if (!winner || best < kLeastScore || best == second) return std::nullopt;
    return std::string(winner->name);
}

}  // namespace harbex
