-- The delivered catalog, qd.mdb. Built at build time with the sqlite3 shell,
-- run from this directory so that readfile() finds the template sections.
--
-- Lengths are enforced with CHECK constraints, named <field>_length and
-- <field>_not_empty so that a refused value reports which field refused it.
-- Small pages: each catalogued file writes few bytes to the write-ahead log.
pragma page_size = 1024;
pragma journal_mode = delete;

create table version (
  name text
);
insert into version(name) values ('Quilldex');

-- One row per catalogued file. A file is found by its full path only; a
-- second row for the same path is refused, which the monitor relies on to
-- tell a file that was added before.
create table filenames (
  filename    text not null
              constraint filename_not_empty check (length(filename) > 0)
              constraint filename_length check (length(filename) <= 4096),
  title       text constraint title_length check (title is null or length(title) <= 255),
  description text,
  catalog     text collate nocase
              constraint catalog_length check (catalog is null or length(catalog) <= 100),
  keywords    text constraint keywords_length check (keywords is null or length(keywords) <= 255)
);
-- The only index: every lookup is by path, and the searches by title,
-- description and catalog are substring searches that no index serves.
create unique index filenames_filename on filenames(filename);

-- Catalog names. Duplicates are allowed: the lists fold them with "group by".
create table catalog (
  catalog text collate nocase
          constraint catalog_length check (catalog is null or length(catalog) <= 100)
);
create index catalog_catalog on catalog(catalog);

-- Page templates, one row each.
create table template (
  tname        text not null collate nocase
               constraint tname_not_empty check (length(tname) > 0)
               constraint tname_length check (length(tname) <= 100),
  ttype        text constraint ttype_length check (ttype is null or length(ttype) <= 1),
  description  text constraint description_length check (description is null or length(description) <= 255),
  header       text,
  "pre-image"  text,
  image1       text,
  image2       text,
  "post-image" text,
  footer       text
);
create unique index template_tname on template(tname);

.read templates.sql
